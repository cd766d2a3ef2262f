#include "quorix/platform/posix/HostedLoop.h"

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <utility>

namespace quorix {

namespace {

void Control(int epoll, int operation, int descriptor, unsigned events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = descriptor;
    epoll_ctl(epoll, operation, descriptor, &event);
}

}  // namespace

HostedLoop::HostedLoop(GMainContext* context)
    : context_(context),
      epoll_(epoll_create1(EPOLL_CLOEXEC)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
    Control(epoll_, EPOLL_CTL_ADD, timer_, EPOLLIN);
    Prepare();
}

HostedLoop::~HostedLoop() {
    close(timer_);
    close(epoll_);
}

void HostedLoop::Dispatch() {
    const bool outer = std::exchange(isDispatching_, true);
    g_main_context_iteration(context_, FALSE);
    isDispatching_ = outer;
    if (!outer) Prepare();
}

void HostedLoop::Changed() {
    if (!isDispatching_) WakeIn(0);
}

void HostedLoop::Prepare() {
    gint priority = 0;
    gint timeout = -1;
    if (!g_main_context_acquire(context_)) return;  // another thread runs it
    const bool isReady = g_main_context_prepare(context_, &priority) != FALSE;
    const int count = g_main_context_query(context_, priority, &timeout, nullptr, 0);
    std::vector<GPollFD> wanted(static_cast<std::size_t>(count));
    g_main_context_query(context_, priority, &timeout, wanted.data(), count);
    g_main_context_release(context_);
    Watch(wanted);
    WakeIn(isReady ? 0 : timeout);
}

void HostedLoop::Watch(const std::vector<GPollFD>& wanted) {
    std::map<int, unsigned> now;
    for (const GPollFD& poll : wanted) now[poll.fd] |= poll.events;  // both number events as poll does
    if (now == watched_) return;
    for (const auto& [descriptor, events] : watched_) {
        if (now.find(descriptor) == now.end()) Control(epoll_, EPOLL_CTL_DEL, descriptor, 0);
    }
    for (const auto& [descriptor, events] : now) {
        const bool isNew = watched_.find(descriptor) == watched_.end();
        Control(epoll_, isNew ? EPOLL_CTL_ADD : EPOLL_CTL_MOD, descriptor, events);
    }
    watched_ = std::move(now);
}

void HostedLoop::WakeIn(int milliseconds) {
    constexpr int kSecond = 1000;
    constexpr long kMillisecond = 1000000;
    itimerspec wake{};
    if (milliseconds >= 0) {
        wake.it_value.tv_sec = milliseconds / kSecond;
        wake.it_value.tv_nsec = milliseconds % kSecond * kMillisecond;
        if (milliseconds == 0) wake.it_value.tv_nsec = 1;  // zero would be never
    }
    timerfd_settime(timer_, 0, &wake, nullptr);
}

}  // namespace quorix
