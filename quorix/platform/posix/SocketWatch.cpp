#include "quorix/platform/posix/SocketWatch.h"

#include <algorithm>

#include "quorix/platform/posix/SocketError.h"

namespace quorix {

struct SocketWatch::Source {
    GSource base;
    SocketWatch* watch;
};

namespace {

constexpr unsigned kIn = G_IO_IN;
constexpr unsigned kOut = G_IO_OUT;
constexpr unsigned kBroken = G_IO_ERR | G_IO_HUP;

unsigned When(bool condition, unsigned flags) { return condition ? flags : 0; }

}  // namespace

void Dispose(GSource*& source) {
    if (source == nullptr) return;
    g_source_destroy(source);
    g_source_unref(source);
    source = nullptr;
}

SocketWatch::~SocketWatch() {
    Deselect();
    KillTimer();
}

void SocketWatch::Select(GMainContext* context, SocketSink& sink, std::int32_t events) {
    static GSourceFuncs functions = {OnPrepare, OnCheck, OnDispatch, nullptr, nullptr, nullptr};
    Deselect();
    sink_ = &sink;
    events_ = armed_ = events;
    source_ = g_source_new(&functions, sizeof(Source));
    reinterpret_cast<Source*>(source_)->watch = this;
    g_source_set_can_recurse(source_, TRUE);  // a pump nested in a handler must deliver too
    g_source_attach(source_, context);
}

void SocketWatch::Deselect() {
    Dispose(source_);
    polled_ = nullptr;
    polledFor_ = 0;
    events_ = armed_ = 0;
    readAgain_ = false;
}

void SocketWatch::SetTimer(GMainContext* context, SocketSink& sink, std::int32_t milliseconds) {
    KillTimer();
    timerSink_ = &sink;
    timer_ = g_timeout_source_new(static_cast<guint>(std::max(milliseconds, kShortestInterval)));
    g_source_set_callback(timer_, OnTimer, this, nullptr);
    g_source_set_can_recurse(timer_, TRUE);
    g_source_attach(timer_, context);
}

void SocketWatch::KillTimer() { Dispose(timer_); }

void SocketWatch::ConnectEnded(std::int32_t error) {
    phase_ = Phase::Connecting;
    connectResult_ = error;
}

void SocketWatch::Received(Transfer transfer) {
    Rearm(SOCK_Read);
    if (transfer.count > 0 || transfer.error == SOCKERR_WouldBlock) return;
    end_ = transfer.error;
}

gboolean SocketWatch::OnPrepare(GSource* source, gint* timeout) {
    SocketWatch& watch = *reinterpret_cast<Source*>(source)->watch;
    *timeout = -1;
    watch.UpdatePoll();
    return watch.HasDueWithoutPoll();
}

gboolean SocketWatch::OnCheck(GSource* source) {
    const SocketWatch& watch = *reinterpret_cast<Source*>(source)->watch;
    return watch.HasDueWithoutPoll() || watch.Ready() != 0;
}

gboolean SocketWatch::OnDispatch(GSource* source, GSourceFunc, gpointer) {
    auto watch = reinterpret_cast<Source*>(source)->watch->shared_from_this();
    watch->Dispatch(watch->Ready());
    return G_SOURCE_CONTINUE;
}

gboolean SocketWatch::OnTimer(gpointer watch) {
    auto self = static_cast<SocketWatch*>(watch)->shared_from_this();
    self->timerSink_->OnSocketTimer(self->socket_);
    return G_SOURCE_CONTINUE;
}

unsigned SocketWatch::Wanted() const {
    switch (phase_) {
        case Phase::Connecting: return When((armed_ & SOCK_Connect) != 0 && !connectResult_, kOut);
        case Phase::Listening: return When((armed_ & SOCK_Accept) != 0, kIn);
        case Phase::Connected:
            return When((armed_ & SOCK_Read) != 0 && !end_, kIn) | When((armed_ & SOCK_Write) != 0, kOut);
        default: return 0;
    }
}

unsigned SocketWatch::Ready() const {
    if (polled_ == nullptr) return 0;
    return g_source_query_unix_fd(source_, polled_);
}

// A descriptor that is polled for nothing still reports errors and hang-ups, for ever; so it leaves the
// poll set altogether.
void SocketWatch::UpdatePoll() {
    unsigned wanted = Wanted();
    if (wanted == polledFor_) return;
    if (wanted == 0) {
        g_source_remove_unix_fd(source_, polled_);
        polled_ = nullptr;
    } else if (polled_ == nullptr) {
        polled_ = g_source_add_unix_fd(source_, socket_, static_cast<GIOCondition>(wanted));
    } else {
        g_source_modify_unix_fd(source_, polled_, static_cast<GIOCondition>(wanted));
    }
    polledFor_ = wanted;
}

bool SocketWatch::HasDueWithoutPoll() const {
    return IsDue(SOCK_Connect, 0) || IsDue(SOCK_Read, 0) || IsDue(SOCK_Close, 0);
}

bool SocketWatch::IsDue(eSocketEvent event, unsigned ready) const {
    if ((armed_ & event) == 0) return false;
    switch (event) {
        case SOCK_Connect:
            return phase_ == Phase::Connecting && (connectResult_ || (ready & (kOut | kBroken)) != 0);
        case SOCK_Write: return phase_ == Phase::Connected && (ready & kOut) != 0;
        case SOCK_Accept: return phase_ == Phase::Listening && (ready & kIn) != 0;
        case SOCK_Read:
            return phase_ == Phase::Connected && (readAgain_ || (!end_ && (ready & (kIn | kBroken)) != 0));
        default: return end_.has_value() && !readAgain_;
    }
}

// Writing comes before reading: a peer that never stops sending must not keep the send queue waiting.
void SocketWatch::Dispatch(unsigned ready) {
    for (eSocketEvent event : {SOCK_Connect, SOCK_Write, SOCK_Accept, SOCK_Read, SOCK_Close}) {
        if (IsDue(event, ready)) Deliver(event);
    }
}

void SocketWatch::Deliver(eSocketEvent event) {
    armed_ &= ~event;
    if (event == SOCK_Read) readAgain_ = false;
    std::int32_t error = ErrorFor(event);
    sink_->OnSocketEvent(socket_, event, error);
}

std::int32_t SocketWatch::ErrorFor(eSocketEvent event) {
    if (event == SOCK_Close) return *end_;
    return event == SOCK_Connect ? TakeConnectResult() : SOCKERR_None;
}

std::int32_t SocketWatch::TakeConnectResult() {
    std::int32_t result = connectResult_ ? *connectResult_ : PendingSocketError(socket_);
    connectResult_.reset();
    phase_ = result == SOCKERR_None ? Phase::Connected : Phase::Idle;
    return result;
}

}  // namespace quorix
