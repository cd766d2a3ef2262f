#include "quorix/platform/posix/SocketPoll.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace quorix {

namespace {

constexpr int kEventsAtOnce = 64;

thread_local SocketPoll* waiting = nullptr;

// Also when memory runs out meanwhile, since the watch may not outlive that.
class Delivering {
public:
    Delivering(SocketWatch*& current, SocketWatch& watch)
        : current_(current), outer_(std::exchange(current, &watch)) {}
    ~Delivering() { current_ = outer_; }
    Delivering(const Delivering&) = delete;
    Delivering& operator=(const Delivering&) = delete;

private:
    SocketWatch*& current_;
    SocketWatch* outer_;
};

}  // namespace

struct SocketPoll::Source {
    GSource base;
    SocketPoll* poll;
};

SocketPoll::SocketPoll(GMainContext* context, std::function<void()> touched)
    : onTouched_(std::move(touched)), epoll_(epoll_create1(EPOLL_CLOEXEC)) {
    static GSourceFuncs functions = {OnPrepare, OnCheck, OnDispatch, nullptr, nullptr, nullptr};
    source_ = g_source_new(&functions, sizeof(Source));
    reinterpret_cast<Source*>(source_)->poll = this;
    g_source_set_can_recurse(source_, TRUE);  // a pump nested in a handler must deliver too
    polled_ = g_source_add_unix_fd(source_, epoll_, G_IO_IN);
    g_source_attach(source_, context);
}

SocketPoll::~SocketPoll() {
    g_source_destroy(source_);
    g_source_unref(source_);
    close(epoll_);
}

SocketPoll::DirectWait::DirectWait(SocketPoll& poll, GMainContext* context)
    : context_(g_main_context_get_poll_func(context) == g_poll ? context : nullptr) {
    if (context_ == nullptr) return;
    waiting = &poll;
    g_main_context_set_poll_func(context_, SocketPoll::Poll);
}

SocketPoll::DirectWait::~DirectWait() {
    if (context_ != nullptr) g_main_context_set_poll_func(context_, g_poll);
}

// Of two descriptors, one of them ours, the other is that by which the context is woken.
gint SocketPoll::Poll(GPollFD* descriptors, guint count, gint milliseconds) {
    SocketPoll& poll = *waiting;
    if (count == 2) {
        GPollFD& other = descriptors[descriptors[0].fd == poll.epoll_ ? 1 : 0];
        GPollFD& own = descriptors[&other == descriptors ? 1 : 0];
        if (own.fd == poll.epoll_ && poll.Includes(other)) return poll.Gather(milliseconds, &other);
    }
    return g_poll(descriptors, count, milliseconds);
}

bool SocketPoll::Includes(const GPollFD& wakeUp) {
    if (wakeUp_ == wakeUp.fd) return true;
    epoll_event event{};
    event.events = EPOLLIN;
    if (wakeUp_ != -1 || epoll_ctl(epoll_, EPOLL_CTL_ADD, wakeUp.fd, &event) != 0) return false;
    wakeUp_ = wakeUp.fd;
    return true;
}

void SocketPoll::Touch(SocketWatch& watch) {
    if (&watch == delivering_) return;  // it is asked when all is delivered
    if (std::exchange(watch.isTouched_, true)) return;
    touched_.push_back(watch.weak_from_this());
    onTouched_();
}

// A descriptor that was closed behind our back has left the set by itself.
void SocketPoll::Wait(SocketWatch& watch, unsigned former, unsigned wanted) {
    epoll_event event{};
    event.events = wanted;
    event.data.ptr = &watch;
    int operation = former == 0 ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
    if (wanted == 0) operation = EPOLL_CTL_DEL;
    int result = epoll_ctl(epoll_, operation, watch.socket_, &event);
    if (result == 0 || wanted == 0) return;
    if (errno == ENOENT) epoll_ctl(epoll_, EPOLL_CTL_ADD, watch.socket_, &event);
    if (errno == EEXIST) epoll_ctl(epoll_, EPOLL_CTL_MOD, watch.socket_, &event);
}

gboolean SocketPoll::OnPrepare(GSource* source, gint* timeout) {
    SocketPoll& poll = *reinterpret_cast<Source*>(source)->poll;
    *timeout = -1;
    poll.AskTouched();
    return !poll.due_.empty();
}

gboolean SocketPoll::OnCheck(GSource* source) {
    const SocketPoll& poll = *reinterpret_cast<Source*>(source)->poll;
    return !poll.due_.empty() || poll.HasNews();
}

gboolean SocketPoll::OnDispatch(GSource* source, GSourceFunc, gpointer) {
    SocketPoll& poll = *reinterpret_cast<Source*>(source)->poll;
    if (poll.HasNews()) poll.Gather(0, nullptr);
    poll.DeliverForATurn();
    return G_SOURCE_CONTINUE;
}

bool SocketPoll::HasNews() const { return g_source_query_unix_fd(source_, polled_) != 0; }

void SocketPoll::AskTouched() {
    if (delivering_ != nullptr) Ask(*delivering_);  // a pump nested in a handler of its events
    for (const std::weak_ptr<SocketWatch>& touched : std::exchange(touched_, {})) {
        std::shared_ptr<SocketWatch> watch = touched.lock();
        if (watch == nullptr) continue;
        watch->isTouched_ = false;
        Ask(*watch);
    }
}

void SocketPoll::Ask(SocketWatch& watch) {
    if (watch.IsSelected() && watch.Settle()) Enqueue(watch);
}

void SocketPoll::Enqueue(SocketWatch& watch) {
    if (!std::exchange(watch.isDue_, true)) due_.push_back(watch.weak_from_this());
}

gint SocketPoll::Gather(gint milliseconds, GPollFD* wakeUp) {
    std::array<epoll_event, kEventsAtOnce> events;
    int count = epoll_wait(epoll_, events.data(), kEventsAtOnce, milliseconds);
    for (int i = 0; i < count; ++i) {
        if (auto* watch = static_cast<SocketWatch*>(events[i].data.ptr)) {
            watch->ready_ |= events[i].events;
            Enqueue(*watch);
        } else if (wakeUp != nullptr) {
            wakeUp->revents = G_IO_IN;
        }
    }
    return count;
}

// What is left when the turn is over stays due. A pump nested in a handler goes on with it.
void SocketPoll::DeliverForATurn() {
    std::int64_t end = due_.size() > 1 ? g_get_monotonic_time() + kLongestTurn : 0;
    while (!due_.empty()) {
        std::shared_ptr<SocketWatch> watch = due_.front().lock();
        due_.pop_front();
        if (watch != nullptr) Deliver(*watch);
        if (!due_.empty() && g_get_monotonic_time() >= end) return;
    }
}

void SocketPoll::Deliver(SocketWatch& watch) {
    {
        const Delivering delivering(delivering_, watch);
        watch.Dispatch();
    }
    Ask(watch);
}

}  // namespace quorix
