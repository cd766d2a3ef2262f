// The line of the modern mode: nothing blocks, every failure is told, and each session has its own timers.
#pragma once

#include <deque>

#include "quorix/net/Socks5Tunnel.h"
#include "quorix/platform/Timer.h"
#include "quorix/session/Line.h"

namespace quorix {

class ModernLine final : public Line, public std::enable_shared_from_this<ModernLine> {
public:
    explicit ModernLine(SessionCore& session) : Line(session) {}
    ~ModernLine() override;

    void AttemptBegins() override;
    void OpenSocket() override;
    void SocketUp() override;
    void SocketFailed(std::int32_t number) override;
    bool IsFree() const override;
    void Transmit(std::string_view bytes) override;
    std::string_view Receive(std::string_view bytes) override;
    void StreamOpens() override;
    void LoggedIn() override;
    bool IsOwnAnswer(const Stanza& stanza) override;
    std::int32_t RetryDelay() const override;
    void Closing() override;
    void Closed() override;

private:
    // How far a silent peer has been tried.
    enum class Trial { None, Asked, LastChance };

    // Calls `step` each time, as an entry of the session.
    void Start(Timer& timer, std::int64_t milliseconds, void (ModernLine::*step)());

    String Host() const;
    std::uint16_t Port() const;
    void OpenToServer();
    void OpenToProxy();
    void LookUpForProxy();
    void OpenToNextDestination();
    void TunnelFailed();
    void FailAttempt(std::int32_t number, StringView description);

    void Retry();
    void OnRetryDue();
    void OnLoginLate();

    void ListenFor(std::int64_t milliseconds) { Start(silence_, milliseconds, &ModernLine::OnSilence); }
    void OnSilence();
    void Ask();

    Timer login_;
    Timer retry_;
    Timer silence_;
    LookUpId lookUp_ = 0;
    Socks5Tunnel tunnel_;
    std::deque<Address> destinations_;  // not asked of the proxy yet
    std::int32_t retries_ = 0;          // since the last login
    std::int64_t retryDue_ = 0;
    bool retrying_ = false;  // the attempt that begins is one of these
    std::int64_t lastHeard_ = 0;
    Trial trial_ = Trial::None;
    String questionId_;  // "" when none is open
};

}  // namespace quorix
