#include "quorix/platform/posix/PosixEnvironment.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include "quorix/platform/posix/SocketError.h"

namespace quorix {

namespace {

using Phase = SocketWatch::Phase;

// One round delivers everything that is ready; a source that is ready again each time ends here.
constexpr int kRoundsOfDoEvents = 64;

std::int32_t LastError() { return SocketErrorFromErrno(errno); }

std::int32_t ErrorOf(int result) { return result == 0 ? SOCKERR_None : LastError(); }

Transfer TransferOf(ssize_t result) {
    if (result >= 0) return {static_cast<std::int32_t>(result), SOCKERR_None};
    return {-1, LastError()};
}

template <class Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

sockaddr_in SystemAddress(Address address) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = htonl(address.ip);
    result.sin_port = htons(address.port);
    return result;
}

template <class Query>
Address AddressBy(Query query, SocketId socket) {
    sockaddr_in found{};
    socklen_t size = sizeof found;
    bool known = query(socket, reinterpret_cast<sockaddr*>(&found), &size) == 0;
    if (!known || found.sin_family != AF_INET) return {};
    return {ntohl(found.sin_addr.s_addr), ntohs(found.sin_port)};
}

std::int64_t Now() { return g_get_monotonic_time() / 1000; }

// An interrupted wait goes on for the rest of its time.
std::int32_t WaitFor(SocketId socket, short events, std::int32_t milliseconds) {
    std::int64_t deadline = Now() + milliseconds;
    pollfd waiting{socket, events, 0};
    int ready = Uninterrupted(
        [&] { return poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(deadline - Now(), 0))); });
    if (ready < 0) return LastError();
    return ready == 0 ? SOCKERR_TimedOut : SOCKERR_None;
}

void SendAtOnce(int descriptor) {
    int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool IsMainThread() { return gettid() == getpid(); }

gboolean Tick(gpointer tick) {
    (*static_cast<TimerTick*>(tick))();
    return G_SOURCE_CONTINUE;
}

void Forget(gpointer tick) { delete static_cast<TimerTick*>(tick); }

}  // namespace

PosixEnvironment::PosixEnvironment()
    : ownsContext_(g_main_context_get_thread_default() == nullptr && !IsMainThread() &&
                   g_main_context_is_owner(g_main_context_default()) == FALSE) {
    if (!ownsContext_) {
        context_ = g_main_context_ref_thread_default();
    } else {
        context_ = g_main_context_new();
        g_main_context_push_thread_default(context_);
    }
}

PosixEnvironment::~PosixEnvironment() {
    for (auto& [id, source] : timers_) Dispose(source);
    sockets_.clear();
    if (ownsContext_) g_main_context_pop_thread_default(context_);
    g_main_context_unref(context_);
}

HiddenWindow PosixEnvironment::OpenWindow(SocketSink&) { return {}; }
void PosixEnvironment::CloseWindow(HiddenWindow&) {}

NewSocket PosixEnvironment::CreateSocket() {
    return Adopt(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP), Phase::Idle);
}

// 0 means "no socket" everywhere, so a descriptor of that number is exchanged for another.
NewSocket PosixEnvironment::Adopt(int descriptor, Phase phase) {
    if (descriptor == 0) {
        descriptor = fcntl(0, F_DUPFD_CLOEXEC, 1);
        close(0);
    }
    if (descriptor < 0) return {0, LastError()};
    SendAtOnce(descriptor);
    sockets_[descriptor] = std::make_shared<SocketWatch>(descriptor, phase);
    return {descriptor, SOCKERR_None};
}

// A descriptor that was not made here is one that the application has accepted.
SocketWatch& PosixEnvironment::WatchOf(SocketId socket) {
    auto& watch = sockets_[socket];
    if (watch == nullptr) watch = std::make_shared<SocketWatch>(socket, Phase::Connected);
    return *watch;
}

std::int32_t PosixEnvironment::Bind(SocketId socket, std::uint16_t port, bool reuseAddress) {
    int reuse = reuseAddress ? 1 : 0;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    sockaddr_in local = SystemAddress({INADDR_ANY, port});
    return ErrorOf(bind(socket, reinterpret_cast<sockaddr*>(&local), sizeof local));
}

std::int32_t PosixEnvironment::Listen(SocketId socket, std::int32_t backlog) {
    std::int32_t error = ErrorOf(listen(socket, backlog));
    if (error == SOCKERR_None) WatchOf(socket).EnterPhase(Phase::Listening);
    return error;
}

NewSocket PosixEnvironment::Accept(SocketId listener) {
    int accepted = Uninterrupted([&] { return accept4(listener, nullptr, nullptr, SOCK_CLOEXEC); });
    NewSocket result = Adopt(accepted, Phase::Connected);
    WatchOf(listener).Rearm(SOCK_Accept);
    return result;
}

std::int32_t PosixEnvironment::Connect(SocketId socket, Address peer) {
    sockaddr_in remote = SystemAddress(peer);
    int result = connect(socket, reinterpret_cast<sockaddr*>(&remote), sizeof remote);
    std::int32_t error = result != 0 && errno == EINPROGRESS ? SOCKERR_WouldBlock : ErrorOf(result);
    SocketWatch& watch = WatchOf(socket);
    if (error == SOCKERR_WouldBlock) {
        watch.EnterPhase(watch.IsSelected() ? Phase::Connecting : Phase::Connected);
        return error;
    }
    if (watch.IsSelected()) {
        watch.ConnectEnded(error);  // loopback decides at once, but the answer comes through the pump
        return SOCKERR_WouldBlock;
    }
    watch.EnterPhase(error == SOCKERR_None ? Phase::Connected : Phase::Idle);
    return error;
}

Transfer PosixEnvironment::Send(SocketId socket, std::string_view bytes) {
    std::size_t size = std::min<std::size_t>(bytes.size(), INT_MAX);
    Transfer result =
        TransferOf(Uninterrupted([&] { return send(socket, bytes.data(), size, MSG_NOSIGNAL); }));
    if (result.error == SOCKERR_WouldBlock) WatchOf(socket).Rearm(SOCK_Write);
    return result;
}

Transfer PosixEnvironment::Receive(SocketId socket, char* buffer, std::size_t capacity) {
    std::size_t size = std::min<std::size_t>(capacity, INT_MAX);
    Transfer result = TransferOf(Uninterrupted([&] { return recv(socket, buffer, size, 0); }));
    WatchOf(socket).Received(result);
    return result;
}

void PosixEnvironment::Close(SocketId socket) {
    auto found = sockets_.find(socket);
    if (found != sockets_.end()) {
        found->second->Deselect();
        found->second->KillTimer();
        sockets_.erase(found);
    }
    if (socket > 0) close(socket);
}

std::int32_t PosixEnvironment::AsyncSelect(SocketId socket, const HiddenWindow&, SocketSink& sink,
                                           std::int32_t events) {
    if (events == 0) {
        WatchOf(socket).Deselect();
        return SOCKERR_None;
    }
    std::int32_t error = SetBlocking(socket, false);
    if (error == SOCKERR_None) WatchOf(socket).Select(context_, sink, events);
    return error;
}

std::int32_t PosixEnvironment::SetBlocking(SocketId socket, bool blocking) {
    int flags = fcntl(socket, F_GETFL);
    if (flags < 0) return LastError();
    return ErrorOf(fcntl(socket, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK));
}

std::int32_t PosixEnvironment::WaitReadable(SocketId socket, std::int32_t milliseconds) {
    return WaitFor(socket, POLLIN, milliseconds);
}

std::int32_t PosixEnvironment::WaitWritable(SocketId socket, std::int32_t milliseconds) {
    return WaitFor(socket, POLLOUT, milliseconds);
}

std::int32_t PosixEnvironment::PendingError(SocketId socket) { return PendingSocketError(socket); }
Address PosixEnvironment::LocalAddress(SocketId socket) { return AddressBy(getsockname, socket); }
Address PosixEnvironment::PeerAddress(SocketId socket) { return AddressBy(getpeername, socket); }

std::optional<std::uint32_t> PosixEnvironment::Resolve(const std::string& host) {
    if (auto dotted = ParseDotted(host)) return dotted;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (host.empty() || getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return {};
    std::uint32_t ip = ntohl(reinterpret_cast<sockaddr_in*>(found->ai_addr)->sin_addr.s_addr);
    freeaddrinfo(found);
    return ip;
}

std::string PosixEnvironment::HostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

void PosixEnvironment::SetSocketTimer(SocketId socket, const HiddenWindow&, SocketSink& sink,
                                      std::int32_t milliseconds) {
    WatchOf(socket).SetTimer(context_, sink, milliseconds);
}

void PosixEnvironment::KillSocketTimer(SocketId socket, const HiddenWindow&) {
    auto found = sockets_.find(socket);
    if (found != sockets_.end()) found->second->KillTimer();
}

TimerId PosixEnvironment::SetTimer(std::int32_t milliseconds, TimerTick tick) {
    GSource* source = g_timeout_source_new(static_cast<guint>(std::max(milliseconds, kShortestInterval)));
    g_source_set_callback(source, Tick, new TimerTick(tick), Forget);
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, context_);
    timers_[++lastTimer_] = source;
    return lastTimer_;
}

void PosixEnvironment::KillTimer(TimerId timer) {
    auto found = timers_.find(timer);
    if (found == timers_.end()) return;
    Dispose(found->second);
    timers_.erase(found);
}

std::int64_t PosixEnvironment::Milliseconds() { return Now(); }

void PosixEnvironment::DoEvents() {
    for (int round = 0; round < kRoundsOfDoEvents && g_main_context_iteration(context_, FALSE); ++round) {
    }
}

// A Quit that comes before the loop runs (from an event inside Connect, say) counts for the next one.
void PosixEnvironment::Run() {
    while (!quit_) g_main_context_iteration(context_, TRUE);
    quit_ = false;
}

void PosixEnvironment::Quit() { quit_ = true; }

void PosixEnvironment::CriticalMessage(StringView, StringView) {}

// The main thread's environment is never destroyed: a session may live in a static variable.
Environment& SystemEnvironment() {
    if (IsMainThread()) {
        static PosixEnvironment& main = *new PosixEnvironment;
        return main;
    }
    thread_local PosixEnvironment own;
    return own;
}

}  // namespace quorix
