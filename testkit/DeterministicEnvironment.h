// An environment without sockets, threads or waiting: a virtual network and a virtual clock, moved by the
// test.
//
// A socket that connects to a port somebody listens on in the same environment meets that listener; any other
// connection meets a ScriptedPeer, which the test plays. Nothing is delivered until DoEvents or Advance.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "quorix/platform/TimerQueue.h"

namespace quorix::testkit {

// One direction of a connection: chunks that arrive one notification each.
struct Pipe {
    std::deque<std::string> chunks;
    bool ended = false;
    std::int32_t error = SOCKERR_None;  // what the end is reported with
};

struct Connection {
    Pipe toClient;
    Pipe toServer;
    SocketId client = 0;
    SocketId server = 0;  // 0 while a ScriptedPeer plays the other side
};

class DeterministicEnvironment;

// The other end of one connection, in the hands of the test.
class ScriptedPeer {
public:
    ScriptedPeer(DeterministicEnvironment& environment, std::shared_ptr<Connection> connection,
                 Address address)
        : environment_(environment), connection_(std::move(connection)), address_(address) {}

    // Arrives as one chunk, in one notification.
    void Say(std::string_view bytes);
    void Close() { CloseWith(SOCKERR_None); }
    void CloseWith(std::int32_t error);

    // All bytes heard so far, or since the last TakeHeard.
    std::string Heard() const;
    std::string TakeHeard();
    bool ClientClosed() const { return connection_->toServer.ended; }

    // The address that the client asked for.
    Address Destination() const { return address_; }

private:
    DeterministicEnvironment& environment_;
    std::shared_ptr<Connection> connection_;
    Address address_;
};

enum class Call { Create, Bind, Listen, Accept, Connect, Send, Receive, Select, SetTimer };

class DeterministicEnvironment : public Environment {
public:
    DeterministicEnvironment();
    ~DeterministicEnvironment() override;

    // -- What the test controls --

    // Delivers everything that is due within `milliseconds`, timers in the order of their times.
    void Advance(std::int64_t milliseconds);

    // The clock jumps; whatever became due meanwhile is delivered later.
    void SkipTime(std::int64_t milliseconds) { now_ += milliseconds; }

    // The peer of the newest connection, or of the n-th one made (from 0). Throws when there is none.
    ScriptedPeer& Peer();
    ScriptedPeer& Peer(std::size_t index);
    std::size_t PeerCount() const { return peers_.size(); }

    void LimitReads(std::size_t bytes) { readLimit_ = bytes; }
    void LimitWrites(std::size_t bytes) { writeLimit_ = bytes; }
    void BlockWrites(bool block);

    // Connections fail with `error`, from now on; 0 lets them succeed again. Held ones neither succeed nor
    // fail.
    void RefuseConnections(std::int32_t error) { refusal_ = error; }
    void HoldConnections(bool hold) { hold_ = hold; }

    // Lets the n-th call from now (1 is the next) fail.
    void Fail(Call call, int nth, std::int32_t error) { failures_[call] = {nth, error}; }
    // Whether that call has come, or none was to fail.
    bool HasFailed(Call call) const { return failures_.count(call) == 0; }

    // Plays the peer of a socket that waits without the pump.
    void WhileWaiting(std::function<void()> play) { whileWaiting_ = std::move(play); }

    void AddHost(const std::string& name, std::uint32_t ip) { hosts_[name] = ip; }
    void RemoveHost(const std::string& name) { unknownHosts_.insert(name); }

    // What look-ups without blocking find: a name that was not scripted has the address of AddHost or the
    // loopback address, a service none. Held ones are never answered.
    void ScriptAddresses(const std::string& name, std::vector<Address> addresses) {
        addresses_[name] = std::move(addresses);
    }
    void ScriptService(const std::string& domain, std::vector<ServiceTarget> targets) {
        services_[domain] = std::move(targets);
    }
    void HoldLookUps(bool hold) { holdLookUps_ = hold; }
    std::size_t RunningLookUps() const { return lookUps_.size(); }

    // Connections to `address` alone fail with `error`.
    void RefuseAddress(const Address& address, std::int32_t error) {
        refusals_[AddressText(address)] = error;
    }

    void ScriptRandom(std::uint32_t number) { random_ = number; }

    std::size_t OpenSockets() const { return sockets_.size(); }
    std::size_t OpenWindows() const { return windows_; }
    std::size_t RunningTimers() const { return timers_.Count(); }
    const std::vector<String>& CriticalMessages() const { return criticalMessages_; }

    // -- Environment --

    HiddenWindow OpenWindow(SocketSink& sink) override;
    void CloseWindow(HiddenWindow& window) override;
    NewSocket CreateSocket(bool ip6) override;
    std::int32_t Bind(SocketId socket, const Address& local, bool reuseAddress) override;
    std::int32_t Listen(SocketId socket, std::int32_t backlog) override;
    NewSocket Accept(SocketId listener) override;
    std::int32_t Connect(SocketId socket, Address peer) override;
    Transfer Send(SocketId socket, std::string_view bytes) override;
    Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) override;
    void ReadAgain(SocketId socket) override;
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
    std::string HostName() override { return "deterministic"; }
    LookUpId LookUpAddresses(const std::string& host, AddressesFound found) override;
    LookUpId LookUpService(const std::string& service, const std::string& domain,
                           ServiceFound found) override;
    void CancelLookUp(LookUpId lookUp) override { lookUps_.erase(lookUp); }
    std::vector<std::string> TrustedCertificates() override { return {}; }
    std::uint32_t Random() override { return random_; }
    void SetSocketTimer(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                        std::int32_t milliseconds) override;
    void KillSocketTimer(SocketId socket, const HiddenWindow& window) override;
    TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) override;
    void KillTimer(TimerId timer) override;
    std::int64_t Milliseconds() override { return now_; }
    void DoEvents() override;
    void Run() override;
    void Quit() override { quit_ = true; }
    void CriticalMessage(StringView text, StringView title) override;

private:
    friend class ScriptedPeer;

    struct Socket {
        std::shared_ptr<Connection> connection;
        bool isServer = false;
        bool listening = false;
        bool connecting = false;
        bool connected = false;
        bool blocking = true;
        bool wantsWrite = false;  // a send was refused since the last SOCK_Write
        bool readAgain = false;
        std::int32_t pendingError = SOCKERR_None;
        Address local;
        Address peer;
        SocketSink* sink = nullptr;
        std::int32_t events = 0;
        std::deque<SocketId> backlog;
    };
    struct Notification {
        SocketId socket;
        std::int32_t event;
        std::int32_t error;
    };
    struct Failure {
        int countdown = 0;
        std::int32_t error = 0;
    };

    std::int32_t FailureOf(Call call);
    // Behind a handle that nobody made there is nothing. An application may name any.
    Socket& At(SocketId socket) {
        auto found = sockets_.find(socket);
        return found != sockets_.end() ? found->second : foreign_ = Socket();
    }
    Pipe& Inbound(Socket& socket);
    Pipe& Outbound(Socket& socket);
    SocketId NewId() { return nextId_++; }
    SocketId FindListener(std::uint16_t port) const;
    void Establish(SocketId id);
    void MeetListener(SocketId id, SocketId listener);
    void Notify(SocketId socket, std::int32_t event, std::int32_t error = SOCKERR_None);
    void NotifyArrival(SocketId socket);
    void AnnounceUnread(SocketId socket);
    bool HasUnread(Socket& socket) {
        return socket.connected && (socket.readAgain || !Inbound(socket).chunks.empty());
    }
    std::int32_t WaitUntil(const std::function<bool()>& ready, std::int32_t milliseconds);
    LookUpId StartLookUp(std::function<void()> answer);
    bool AnswerLookUp();
    bool DeliverOne();
    bool FireNext(std::int64_t until);

    Use use_{*this};
    std::int64_t now_ = 1000;
    std::map<SocketId, Socket> sockets_;
    Socket foreign_;
    std::deque<Notification> queue_;
    TimerQueue timers_;
    std::map<SocketId, TimerId> socketTimers_;
    std::vector<std::unique_ptr<ScriptedPeer>> peers_;
    std::map<std::string, std::uint32_t> hosts_;
    std::set<std::string> unknownHosts_;
    std::map<std::string, std::vector<Address>> addresses_;
    std::map<std::string, std::vector<ServiceTarget>> services_;
    std::map<LookUpId, std::function<void()>> lookUps_;
    std::map<String, std::int32_t> refusals_;
    std::map<Call, Failure> failures_;
    std::vector<String> criticalMessages_;
    std::function<void()> whileWaiting_;
    std::size_t readLimit_ = SIZE_MAX;
    std::size_t writeLimit_ = SIZE_MAX;
    std::size_t windows_ = 0;
    bool writesBlocked_ = false;
    bool hold_ = false;
    bool holdLookUps_ = false;
    LookUpId lastLookUp_ = 0;
    std::uint32_t random_ = 0x80000000;
    bool quit_ = false;
    std::int32_t refusal_ = SOCKERR_None;
    SocketId nextId_ = 1;
    std::uint16_t nextPort_ = 40000;
};

}  // namespace quorix::testkit
