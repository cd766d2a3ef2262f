#include "testkit/DeterministicEnvironment.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace quorix::testkit {

namespace {

constexpr std::uint32_t kLoopback = 0x7F000001;
constexpr std::int32_t kInUse = 10048;

}  // namespace

// -- ScriptedPeer --

void ScriptedPeer::Say(std::string_view bytes) {
    connection_->toClient.chunks.emplace_back(bytes);
    environment_.NotifyArrival(connection_->client);
}

void ScriptedPeer::CloseWith(std::int32_t error) {
    connection_->toClient.ended = true;
    connection_->toClient.error = error;
    environment_.NotifyArrival(connection_->client);
}

std::string ScriptedPeer::Heard() const {
    std::string all;
    for (const std::string& chunk : connection_->toServer.chunks) all += chunk;
    return all;
}

std::string ScriptedPeer::TakeHeard() {
    std::string all = Heard();
    connection_->toServer.chunks.clear();
    return all;
}

// -- What the test controls --

DeterministicEnvironment::DeterministicEnvironment() = default;
DeterministicEnvironment::~DeterministicEnvironment() = default;

void DeterministicEnvironment::Advance(std::int64_t milliseconds) {
    std::int64_t until = now_ + milliseconds;
    DoEvents();
    while (FireNext(until)) DoEvents();
    now_ = until;
}

ScriptedPeer& DeterministicEnvironment::Peer() { return Peer(peers_.size() - 1); }

ScriptedPeer& DeterministicEnvironment::Peer(std::size_t index) {
    if (index >= peers_.size()) throw std::logic_error("no such connection");
    return *peers_[index];
}

void DeterministicEnvironment::BlockWrites(bool block) {
    writesBlocked_ = block;
    if (block) return;
    for (auto& [id, socket] : sockets_) {
        if (std::exchange(socket.wantsWrite, false)) Notify(id, SOCK_Write);
    }
}

std::int32_t DeterministicEnvironment::FailureOf(Call call) {
    auto found = failures_.find(call);
    if (found == failures_.end() || --found->second.countdown > 0) return SOCKERR_None;
    std::int32_t error = found->second.error;
    failures_.erase(found);
    return error;
}

// -- Connections --

HiddenWindow DeterministicEnvironment::OpenWindow(SocketSink& /*sink*/) {
    ++windows_;
    return {static_cast<std::intptr_t>(windows_), 0};
}

void DeterministicEnvironment::CloseWindow(HiddenWindow& window) {
    if (window.handle != 0) --windows_;
    window = {};
}

NewSocket DeterministicEnvironment::CreateSocket(bool /*ip6*/) {
    if (std::int32_t error = FailureOf(Call::Create)) return {0, error};
    SocketId id = NewId();
    sockets_[id];
    return {id, SOCKERR_None};
}

std::int32_t DeterministicEnvironment::Bind(SocketId socket, const Address& local, bool /*reuseAddress*/) {
    if (std::int32_t error = FailureOf(Call::Bind)) return error;
    if (local.port != 0 && FindListener(local.port) != 0) return kInUse;
    At(socket).local = {kLoopback, local.port != 0 ? local.port : nextPort_++};
    return SOCKERR_None;
}

std::int32_t DeterministicEnvironment::Listen(SocketId socket, std::int32_t /*backlog*/) {
    if (std::int32_t error = FailureOf(Call::Listen)) return error;
    At(socket).listening = true;
    return SOCKERR_None;
}

NewSocket DeterministicEnvironment::Accept(SocketId listener) {
    if (std::int32_t error = FailureOf(Call::Accept)) return {0, error};
    std::deque<SocketId>& backlog = At(listener).backlog;
    if (backlog.empty()) return {0, SOCKERR_WouldBlock};
    SocketId accepted = backlog.front();
    backlog.pop_front();
    return {accepted, SOCKERR_None};
}

std::int32_t DeterministicEnvironment::Connect(SocketId id, Address peer) {
    if (std::int32_t error = FailureOf(Call::Connect)) return error;
    Socket& socket = At(id);
    socket.peer = peer;
    socket.connecting = true;
    if (hold_) return socket.blocking ? SOCKERR_TimedOut : SOCKERR_WouldBlock;
    auto refused = refusals_.find(AddressText(peer));
    std::int32_t refusal = refused == refusals_.end() ? refusal_ : refused->second;
    socket.pendingError = refusal;
    if (refusal == SOCKERR_None) Establish(id);
    if (socket.blocking) return std::exchange(socket.pendingError, SOCKERR_None);
    if (socket.sink == nullptr) return SOCKERR_WouldBlock;
    Notify(id, SOCK_Connect, refusal);
    if (refusal == SOCKERR_None) Notify(id, SOCK_Write);
    return SOCKERR_WouldBlock;
}

SocketId DeterministicEnvironment::FindListener(std::uint16_t port) const {
    for (const auto& [id, socket] : sockets_) {
        if (socket.listening && socket.local.port == port) return id;
    }
    return 0;
}

void DeterministicEnvironment::Establish(SocketId id) {
    Socket& socket = At(id);
    socket.connecting = false;
    socket.connected = true;
    socket.connection = std::make_shared<Connection>();
    socket.connection->client = id;
    if (SocketId listener = FindListener(socket.peer.port)) {
        MeetListener(id, listener);
    } else {
        peers_.push_back(std::make_unique<ScriptedPeer>(*this, socket.connection, socket.peer));
    }
}

void DeterministicEnvironment::MeetListener(SocketId id, SocketId listener) {
    SocketId accepted = NewId();
    Socket& client = At(id);
    Socket& server = sockets_[accepted];
    server.connection = client.connection;
    server.connection->server = accepted;
    server.isServer = true;
    server.connected = true;
    server.local = At(listener).local;
    server.peer = client.local;
    At(listener).backlog.push_back(accepted);
    Notify(listener, SOCK_Accept);
}

Pipe& DeterministicEnvironment::Inbound(Socket& socket) {
    return socket.isServer ? socket.connection->toServer : socket.connection->toClient;
}

Pipe& DeterministicEnvironment::Outbound(Socket& socket) {
    return socket.isServer ? socket.connection->toClient : socket.connection->toServer;
}

Transfer DeterministicEnvironment::Send(SocketId id, std::string_view bytes) {
    if (std::int32_t error = FailureOf(Call::Send)) return {-1, error};
    Socket& socket = At(id);
    if (!socket.connected || Inbound(socket).error != SOCKERR_None) return {-1, SOCKERR_Reset};
    if (writesBlocked_) {
        socket.wantsWrite = true;
        return {-1, SOCKERR_WouldBlock};
    }
    std::string_view taken = bytes.substr(0, writeLimit_);
    Outbound(socket).chunks.emplace_back(taken);
    NotifyArrival(socket.isServer ? socket.connection->client : socket.connection->server);
    return {static_cast<std::int32_t>(taken.size()), SOCKERR_None};
}

Transfer DeterministicEnvironment::Receive(SocketId id, char* buffer, std::size_t capacity) {
    if (std::int32_t error = FailureOf(Call::Receive)) return {-1, error};
    Socket& socket = At(id);
    if (!socket.connected) return {-1, SOCKERR_WouldBlock};
    Pipe& pipe = Inbound(socket);
    if (pipe.chunks.empty() && pipe.ended && pipe.error == SOCKERR_None) return {0, SOCKERR_None};
    if (pipe.chunks.empty()) return {-1, pipe.ended ? pipe.error : SOCKERR_WouldBlock};
    std::string& chunk = pipe.chunks.front();
    std::size_t count = std::min({chunk.size(), capacity, readLimit_});
    chunk.copy(buffer, count);
    chunk.erase(0, count);
    if (chunk.empty()) pipe.chunks.pop_front();
    AnnounceUnread(id);
    return {static_cast<std::int32_t>(count), SOCKERR_None};
}

// As systems do: each receive that leaves bytes behind is followed by a notification.
void DeterministicEnvironment::AnnounceUnread(SocketId id) {
    auto announces = [&](const Notification& waiting) {
        return waiting.socket == id && waiting.event == SOCK_Read;
    };
    bool announced = std::any_of(queue_.begin(), queue_.end(), announces);
    if (!announced && HasUnread(At(id))) Notify(id, SOCK_Read);
}

void DeterministicEnvironment::ReadAgain(SocketId id) {
    At(id).readAgain = true;
    AnnounceUnread(id);
}

void DeterministicEnvironment::Close(SocketId id) {
    auto found = sockets_.find(id);
    if (found == sockets_.end()) return;
    if (found->second.connection) {
        Outbound(found->second).ended = true;
        NotifyArrival(found->second.isServer ? found->second.connection->client
                                             : found->second.connection->server);
    }
    sockets_.erase(found);
    KillSocketTimer(id, {});
    std::erase_if(queue_, [&](const Notification& waiting) { return waiting.socket == id; });
}

// -- Notifications --

std::int32_t DeterministicEnvironment::AsyncSelect(SocketId id, const HiddenWindow& /*window*/,
                                                   SocketSink& sink, std::int32_t events) {
    if (std::int32_t error = FailureOf(Call::Select)) return error;
    Socket& socket = At(id);
    socket.sink = &sink;
    socket.events = events;
    socket.blocking = false;
    if (!socket.connected) return SOCKERR_None;
    Notify(id, SOCK_Connect);  // Winsock says so again
    Notify(id, SOCK_Write);
    NotifyArrival(id);
    return SOCKERR_None;
}

std::int32_t DeterministicEnvironment::SetBlocking(SocketId socket, bool blocking) {
    At(socket).blocking = blocking;
    return SOCKERR_None;
}

std::int32_t DeterministicEnvironment::WaitUntil(const std::function<bool()>& ready,
                                                 std::int32_t milliseconds) {
    if (!ready() && whileWaiting_) whileWaiting_();
    if (ready()) return SOCKERR_None;
    now_ += milliseconds;
    return SOCKERR_TimedOut;
}

std::int32_t DeterministicEnvironment::WaitReadable(SocketId id, std::int32_t milliseconds) {
    auto ready = [&] {
        Socket& socket = At(id);
        return socket.connected && (!Inbound(socket).chunks.empty() || Inbound(socket).ended);
    };
    return WaitUntil(ready, milliseconds);
}

std::int32_t DeterministicEnvironment::WaitWritable(SocketId id, std::int32_t milliseconds) {
    auto ready = [&] {
        const Socket& socket = At(id);
        return socket.connected ? !writesBlocked_ : socket.pendingError != SOCKERR_None;
    };
    return WaitUntil(ready, milliseconds);
}

std::int32_t DeterministicEnvironment::PendingError(SocketId id) {
    return std::exchange(At(id).pendingError, SOCKERR_None);
}

void DeterministicEnvironment::Notify(SocketId socket, std::int32_t event, std::int32_t error) {
    queue_.push_back({socket, event, error});
}

void DeterministicEnvironment::NotifyArrival(SocketId id) {
    auto found = sockets_.find(id);
    if (found == sockets_.end()) return;
    Pipe& pipe = Inbound(found->second);
    AnnounceUnread(id);
    if (pipe.ended) Notify(id, SOCK_Close, pipe.error);
}

bool DeterministicEnvironment::DeliverOne() {
    if (queue_.empty()) return AnswerLookUp();
    Notification next = queue_.front();
    queue_.pop_front();
    auto found = sockets_.find(next.socket);
    if (found == sockets_.end()) return true;
    Socket& socket = found->second;
    if (socket.sink == nullptr || (socket.events & next.event) == 0) return true;
    bool unread = HasUnread(socket);
    if (next.event == SOCK_Read && !unread) return true;
    if (next.event == SOCK_Close && unread) {
        AnnounceUnread(next.socket);
        Notify(next.socket, SOCK_Close, next.error);
        return true;
    }
    if (next.event == SOCK_Read) socket.readAgain = false;
    socket.sink->OnSocketEvent(next.socket, next.event, next.error);
    return true;
}

void DeterministicEnvironment::DoEvents() {
    while (DeliverOne()) {
    }
}

void DeterministicEnvironment::Run() {
    quit_ = false;
    while (!quit_ && (DeliverOne() || FireNext(INT64_MAX))) {
    }
}

// -- Timers --

bool DeterministicEnvironment::FireNext(std::int64_t until) {
    std::optional<std::int64_t> due = timers_.NextDue();
    if (!due || *due > until) return false;
    now_ = std::max(now_, *due);
    timers_.TakeDue(now_)();
    return true;
}

void DeterministicEnvironment::SetSocketTimer(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                                              std::int32_t milliseconds) {
    KillSocketTimer(socket, window);
    socketTimers_[socket] = timers_.Add(now_, milliseconds, [&sink, socket] { sink.OnSocketTimer(socket); });
}

void DeterministicEnvironment::KillSocketTimer(SocketId socket, const HiddenWindow& /*window*/) {
    auto found = socketTimers_.find(socket);
    if (found == socketTimers_.end()) return;
    timers_.Remove(found->second);
    socketTimers_.erase(found);
}

TimerId DeterministicEnvironment::SetTimer(std::int32_t milliseconds, TimerTick tick) {
    if (FailureOf(Call::SetTimer) != SOCKERR_None) return 0;
    return timers_.Add(now_, milliseconds, std::move(tick));
}

void DeterministicEnvironment::KillTimer(TimerId timer) { timers_.Remove(timer); }

// -- Addresses --

Address DeterministicEnvironment::LocalAddress(SocketId socket) { return At(socket).local; }
Address DeterministicEnvironment::PeerAddress(SocketId socket) { return At(socket).peer; }

std::optional<std::uint32_t> DeterministicEnvironment::Resolve(const std::string& host) {
    if (std::optional<std::uint32_t> dotted = ParseDotted(host)) return dotted;
    if (unknownHosts_.count(host) != 0 || host.empty()) return {};
    auto found = hosts_.find(host);
    return found == hosts_.end() ? kLoopback : found->second;
}

LookUpId DeterministicEnvironment::StartLookUp(std::function<void()> answer) {
    lookUps_[++lastLookUp_] = std::move(answer);
    return lastLookUp_;
}

bool DeterministicEnvironment::AnswerLookUp() {
    if (holdLookUps_ || lookUps_.empty()) return false;
    lookUps_.extract(lookUps_.begin()).mapped()();
    return true;
}

LookUpId DeterministicEnvironment::LookUpAddresses(const std::string& host, AddressesFound found) {
    std::vector<Address> addresses;
    if (auto scripted = addresses_.find(host); scripted != addresses_.end()) {
        addresses = scripted->second;
    } else if (auto ip = Resolve(host)) {
        addresses = {{*ip}};
    }
    return StartLookUp([found = std::move(found), addresses] { found(addresses); });
}

LookUpId DeterministicEnvironment::LookUpService(const std::string& service, const std::string& domain,
                                                 ServiceFound found) {
    std::vector<ServiceTarget> targets;
    if (service == "xmpp-client") targets = services_[domain];
    return StartLookUp([found = std::move(found), targets] { found(targets); });
}

void DeterministicEnvironment::CriticalMessage(StringView text, StringView title) {
    criticalMessages_.push_back(Concat({title, u": ", text}));
}

}  // namespace quorix::testkit
