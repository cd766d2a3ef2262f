#include "quorix/platform/posix/SocketWatch.h"

#include <sys/epoll.h>

#include <utility>

#include "quorix/platform/posix/SocketError.h"
#include "quorix/platform/posix/SocketPoll.h"

namespace quorix {

namespace {

constexpr unsigned kIn = EPOLLIN;
constexpr unsigned kOut = EPOLLOUT;
constexpr unsigned kBroken = EPOLLERR | EPOLLHUP;

unsigned When(bool condition, unsigned flags) { return condition ? flags : 0; }

}  // namespace

void SocketWatch::Select(SocketSink& sink, std::int32_t events) {
    sink_ = &sink;
    events_ = armed_ = events;
    Changed();
}

// At once, since the descriptor may be closed next.
void SocketWatch::Deselect() {
    sink_ = nullptr;
    events_ = armed_ = 0;
    readAgain_ = false;
    WaitFor(0);
    ready_ = 0;
}

void SocketWatch::EnterPhase(Phase phase) {
    phase_ = phase;
    Changed();
}

void SocketWatch::ConnectEnded(std::int32_t error) {
    connectResult_ = error;
    EnterPhase(Phase::Connecting);
}

void SocketWatch::Received(Transfer transfer) {
    Rearm(SOCK_Read);
    if (transfer.count > 0 || transfer.error == SOCKERR_WouldBlock) return;
    end_ = transfer.error;
}

void SocketWatch::ReadAgain() {
    readAgain_ = true;
    Changed();
}

void SocketWatch::Rearm(eSocketEvent event) {
    armed_ |= event & events_;
    Changed();
}

void SocketWatch::Changed() {
    if (IsSelected()) poll_.Touch(*this);
}

bool SocketWatch::Settle() {
    WaitFor(Wanted());
    return IsDue(SOCK_Connect, 0) || IsDue(SOCK_Read, 0) || IsDue(SOCK_Close, 0);
}

// A descriptor that is polled for nothing still reports errors and hang-ups, for ever; so it leaves the
// poll set altogether.
void SocketWatch::WaitFor(unsigned wanted) {
    unsigned former = std::exchange(waitedFor_, wanted);
    if (former != wanted) poll_.Wait(*this, former, wanted);
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
void SocketWatch::Dispatch() {
    isDue_ = false;
    unsigned ready = std::exchange(ready_, 0);
    for (eSocketEvent event : {SOCK_Connect, SOCK_Write, SOCK_Accept, SOCK_Read, SOCK_Close}) {
        if (IsDue(event, ready)) Deliver(event);
    }
}

void SocketWatch::Deliver(eSocketEvent event) {
    armed_ &= ~event;
    if (event == SOCK_Read) readAgain_ = false;
    std::int32_t error = ErrorFor(event);
    Changed();
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
