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
#include "quorix/platform/posix/SystemAddress.h"

namespace quorix {

namespace {

using Phase = SocketWatch::Phase;

// How long a listener rests that the system has no descriptor for, in milliseconds.
constexpr std::int32_t kRestOfAListener = 1000;
constexpr std::int32_t kTooManyOpen = 10024;

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

template <class Query>
Address AddressBy(Query query, SocketId socket) {
    SystemAddress found;
    bool known = query(socket, found.Get(), &found.size) == 0;
    return known ? FromSystem(found.Get()) : Address{};
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

void EndSendingAndDrain(int descriptor) {
    shutdown(descriptor, SHUT_WR);
    std::array<char, 16384> unread;
    for (std::size_t taken = 0; taken < kMostDrained; taken += unread.size()) {
        if (recv(descriptor, unread.data(), unread.size(), MSG_DONTWAIT) <= 0) return;
    }
}

// Asked for with every piece that arrives, so the system is asked once.
bool IsMainThread() {
    thread_local const bool isMain = gettid() == getpid();
    return isMain;
}

}  // namespace

struct PosixEnvironment::TimerSource {
    GSource base;
    PosixEnvironment* environment;
};

PosixEnvironment::PosixEnvironment()
    : ownsContext_(g_main_context_get_thread_default() == nullptr && !IsMainThread() &&
                   g_main_context_is_owner(g_main_context_default()) == FALSE) {
    if (!ownsContext_) {
        context_ = g_main_context_ref_thread_default();
    } else {
        context_ = g_main_context_new();
        g_main_context_push_thread_default(context_);
    }
    static GSourceFuncs functions = {nullptr, nullptr, OnTimers, nullptr, nullptr, nullptr};
    poll_ = std::make_unique<SocketPoll>(context_, [this] { NeedsATurn(); });
    timerSource_ = g_source_new(&functions, sizeof(TimerSource));
    reinterpret_cast<TimerSource*>(timerSource_)->environment = this;
    g_source_set_can_recurse(timerSource_, TRUE);
    g_source_attach(timerSource_, context_);
}

PosixEnvironment::~PosixEnvironment() {
    g_source_destroy(timerSource_);
    g_source_unref(timerSource_);
    sockets_.clear();
    poll_.reset();
    hosted_.reset();
    if (ownsContext_) g_main_context_pop_thread_default(context_);
    g_main_context_unref(context_);
}

HiddenWindow PosixEnvironment::OpenWindow(SocketSink&) { return {}; }
void PosixEnvironment::CloseWindow(HiddenWindow&) {}

NewSocket PosixEnvironment::CreateSocket(bool ip6) {
    return Adopt(socket(ip6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP), Phase::Idle);
}

// 0 means "no socket" everywhere, so a descriptor of that number is exchanged for another.
NewSocket PosixEnvironment::Adopt(int descriptor, Phase phase) {
    if (descriptor == 0) {
        descriptor = fcntl(0, F_DUPFD_CLOEXEC, 1);
        close(0);
    }
    if (descriptor < 0) return {0, LastError()};
    SendAtOnce(descriptor);
    sockets_[descriptor] = std::make_shared<SocketWatch>(*poll_, descriptor, phase);
    return {descriptor, SOCKERR_None};
}

// A descriptor that was not made here is one that the application has accepted.
SocketWatch& PosixEnvironment::WatchOf(SocketId socket) {
    auto& watch = sockets_[socket];
    if (watch == nullptr) watch = std::make_shared<SocketWatch>(*poll_, socket, Phase::Connected);
    return *watch;
}

std::int32_t PosixEnvironment::Bind(SocketId socket, const Address& local, bool reuseAddress) {
    int reuse = reuseAddress ? 1 : 0;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
    int later = local.port == 0 ? 1 : 0;  // to find a port that is free for any peer takes the system long
    setsockopt(socket, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &later, sizeof later);
    SystemAddress native = ToSystem(local);
    return ErrorOf(bind(socket, native.Get(), native.size));
}

std::int32_t PosixEnvironment::Listen(SocketId socket, std::int32_t backlog) {
    std::int32_t error = ErrorOf(listen(socket, backlog));
    if (error == SOCKERR_None) WatchOf(socket).EnterPhase(Phase::Listening);
    return error;
}

NewSocket PosixEnvironment::Accept(SocketId listener) {
    int accepted = Uninterrupted([&] { return accept4(listener, nullptr, nullptr, SOCK_CLOEXEC); });
    NewSocket result = Adopt(accepted, Phase::Connected);
    if (result.error == kTooManyOpen) {
        RestListener(listener);
    } else {
        WatchOf(listener).Rearm(SOCK_Accept);
    }
    return result;
}

// The connection that waits would be announced again and again, and could not be taken.
void PosixEnvironment::RestListener(SocketId listener) {
    auto timer = std::make_shared<TimerId>();
    std::weak_ptr<SocketWatch> resting = sockets_.at(listener);
    *timer = SetTimer(kRestOfAListener, [this, timer, resting] {
        KillTimer(*timer);
        if (auto watch = resting.lock()) watch->Rearm(SOCK_Accept);
    });
}

std::int32_t PosixEnvironment::Connect(SocketId socket, Address peer) {
    SystemAddress remote = ToSystem(peer);
    int result = connect(socket, remote.Get(), remote.size);
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
        if (found->second->IsConnected()) EndSendingAndDrain(socket);
        KillSocketTimer(socket, {});
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
    if (error == SOCKERR_None) WatchOf(socket).Select(sink, events);
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
    KillSocketTimer(socket, {});
    socketTimers_[socket] = SetTimer(milliseconds, [&sink, socket] { sink.OnSocketTimer(socket); });
}

void PosixEnvironment::KillSocketTimer(SocketId socket, const HiddenWindow&) {
    auto found = socketTimers_.find(socket);
    if (found == socketTimers_.end()) return;
    KillTimer(found->second);
    socketTimers_.erase(found);
}

TimerId PosixEnvironment::SetTimer(std::int32_t milliseconds, TimerTick tick) {
    TimerId timer = timers_.Add(Now(), milliseconds, std::move(tick));
    UpdateTimerSource();
    return timer;
}

void PosixEnvironment::KillTimer(TimerId timer) {
    timers_.Remove(timer);
    UpdateTimerSource();
}

void PosixEnvironment::UpdateTimerSource() {
    std::optional<std::int64_t> due = timers_.NextDue();
    g_source_set_ready_time(timerSource_, due ? *due * 1000 : -1);
}

gboolean PosixEnvironment::OnTimers(GSource* source, GSourceFunc, gpointer) {
    reinterpret_cast<TimerSource*>(source)->environment->RunDueTimers();
    return G_SOURCE_CONTINUE;
}

// Each tick may run a pump, which must find the others.
void PosixEnvironment::RunDueTimers() {
    std::int64_t end = g_get_monotonic_time() + kLongestTurn;
    while (TimerTick tick = timers_.TakeDue(Now())) {
        UpdateTimerSource();
        tick();
        if (g_get_monotonic_time() >= end) return;
    }
}

std::int64_t PosixEnvironment::Milliseconds() { return Now(); }

void PosixEnvironment::DoEvents() {
    for (int round = 0; round < kRoundsOfDoEvents && g_main_context_iteration(context_, FALSE); ++round) {
    }
    NeedsATurn();
}

// A Quit that comes before the loop runs (from an event inside Connect, say) counts for the next one.
void PosixEnvironment::Run() {
    SocketPoll::DirectWait direct(*poll_, context_);
    while (!quit_) g_main_context_iteration(context_, TRUE);
    quit_ = false;
}

void PosixEnvironment::Quit() { quit_ = true; }

int PosixEnvironment::Descriptor() {
    if (!hosted_) hosted_ = std::make_unique<HostedLoop>(context_);
    return hosted_->Descriptor();
}

void PosixEnvironment::Dispatch() {
    Descriptor();
    hosted_->Dispatch();
}

// The context tells of its timers by itself; of sockets it knows when it asks.
void PosixEnvironment::NeedsATurn() {
    if (hosted_) hosted_->Changed();
}

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
