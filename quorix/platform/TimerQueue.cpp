#include "quorix/platform/TimerQueue.h"

#include <algorithm>

namespace quorix {

TimerId TimerQueue::Add(std::int64_t now, std::int32_t milliseconds, TimerTick tick) {
    std::int32_t interval = std::max(milliseconds, kShortestInterval);
    ++last_;
    timers_[last_] = {now + interval, interval, std::move(tick)};
    order_.emplace(now + interval, last_);
    return last_;
}

void TimerQueue::Remove(TimerId timer) {
    auto found = timers_.find(timer);
    if (found == timers_.end()) return;
    order_.erase({found->second.due, timer});
    timers_.erase(found);
}

std::optional<std::int64_t> TimerQueue::NextDue() const {
    return order_.empty() ? std::nullopt : std::optional(order_.begin()->first);
}

TimerTick TimerQueue::TakeDue(std::int64_t now) {
    if (order_.empty() || order_.begin()->first > now) return {};
    TimerId id = order_.begin()->second;
    order_.erase(order_.begin());
    Timer& timer = timers_.at(id);
    timer.due = now + timer.interval;
    order_.emplace(timer.due, id);
    return timer.tick;
}

}  // namespace quorix
