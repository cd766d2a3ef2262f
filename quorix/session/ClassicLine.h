// The line of the classic mode: one keep-alive and one reconnect timer a thread (see mTimer.h), of the
// session whose line was made last.
#pragma once

#include "quorix/net/Socks5Exchange.h"
#include "quorix/net/mTimer.h"
#include "quorix/session/Line.h"

namespace quorix {

class ClassicLine final : public Line {
public:
    explicit ClassicLine(SessionCore& session);
    ~ClassicLine() override;

    void AttemptBegins() override;
    void OpenSocket() override;
    void SocketUp() override;
    void SocketFailed(std::int32_t /*number*/) override {}
    void Transmit(std::string_view bytes) override;
    std::string_view Receive(std::string_view bytes) override;
    void LoggedIn() override;
    void Closing() override;
    void Closed() override;

private:
    void Open(StringView host, std::int32_t port);
    bool IsNegotiating() const;
    void AnswerProxy(std::string_view reply);
    bool RetriesLeft() const;

    cHelpEvent relay_;
    Socks5Exchange socks_;
    std::int32_t attempts_ = 0;
};

}  // namespace quorix
