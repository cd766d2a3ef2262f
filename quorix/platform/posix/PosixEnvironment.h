// The ground floor on POSIX systems: BSD sockets, and a GLib main context as the pump.
//
// The context is the thread's default one. The main thread has GLib's global default context, which an
// application's GLib, GTK or Qt loop runs already; another thread that has none yet gets one of its own.
#pragma once

#include <glib.h>

#include <memory>
#include <unordered_map>

#include "quorix/platform/Environment.h"
#include "quorix/platform/TimerQueue.h"
#include "quorix/platform/posix/HostedLoop.h"
#include "quorix/platform/posix/Resolver.h"
#include "quorix/platform/posix/SocketPoll.h"
#include "quorix/platform/posix/SocketWatch.h"

namespace quorix {

class PosixEnvironment : public Environment {
public:
    PosixEnvironment();
    ~PosixEnvironment() override;
    PosixEnvironment(const PosixEnvironment&) = delete;
    PosixEnvironment& operator=(const PosixEnvironment&) = delete;

    HiddenWindow OpenWindow(SocketSink& sink) override;
    void CloseWindow(HiddenWindow& window) override;

    NewSocket CreateSocket(bool ip6) override;
    std::int32_t Bind(SocketId socket, const Address& local, bool reuseAddress) override;
    std::int32_t Listen(SocketId socket, std::int32_t backlog) override;
    NewSocket Accept(SocketId listener) override;
    std::int32_t Connect(SocketId socket, Address peer) override;
    Transfer Send(SocketId socket, std::string_view bytes) override;
    Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) override;
    void ReadAgain(SocketId socket) override { WatchOf(socket).ReadAgain(); }
    void Close(SocketId socket) override;

    std::int32_t AsyncSelect(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                             std::int32_t events) override;
    std::int32_t SetBlocking(SocketId socket, bool blocking) override;
    std::int32_t WaitReadable(SocketId socket, std::int32_t milliseconds) override;
    std::int32_t WaitWritable(SocketId socket, std::int32_t milliseconds) override;
    std::int32_t PendingError(SocketId socket) override;

    Address LocalAddress(SocketId socket) override;
    Address PeerAddress(SocketId socket) override;
    std::optional<std::uint32_t> Resolve(const std::string& host) override;
    std::string HostName() override;

    LookUpId LookUpAddresses(const std::string& host, AddressesFound found) override {
        return resolver_.LookUpAddresses(host, std::move(found));
    }
    LookUpId LookUpService(const std::string& service, const std::string& domain,
                           ServiceFound found) override {
        return resolver_.LookUpService(service, domain, std::move(found));
    }
    void CancelLookUp(LookUpId lookUp) override { resolver_.Cancel(lookUp); }
    std::vector<std::string> TrustedCertificates() override { return {}; }
    std::uint32_t Random() override { return g_random_int(); }

    void SetSocketTimer(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                        std::int32_t milliseconds) override;
    void KillSocketTimer(SocketId socket, const HiddenWindow& window) override;
    TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) override;
    void KillTimer(TimerId timer) override;
    std::int64_t Milliseconds() override;

    void DoEvents() override;
    void Run() override;
    void Quit() override;
    int Descriptor() override;
    void Dispatch() override;
    void CriticalMessage(StringView text, StringView title) override;

private:
    struct TimerSource;
    static gboolean OnTimers(GSource* source, GSourceFunc callback, gpointer data);

    NewSocket Adopt(int descriptor, SocketWatch::Phase phase);
    SocketWatch& WatchOf(SocketId socket);
    void RestListener(SocketId listener);
    void RunDueTimers();
    void UpdateTimerSource();
    void NeedsATurn();

    GMainContext* context_;
    bool ownsContext_;
    Resolver resolver_;
    std::unique_ptr<HostedLoop> hosted_;  // once somebody has asked for the descriptor
    std::unique_ptr<SocketPoll> poll_;
    std::unordered_map<SocketId, std::shared_ptr<SocketWatch>> sockets_;
    GSource* timerSource_;
    TimerQueue timers_;
    std::unordered_map<SocketId, TimerId> socketTimers_;
    bool quit_ = false;
};

}  // namespace quorix
