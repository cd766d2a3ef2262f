// The timers of one thread, in the order of their times. An environment drives them by one timer of the
// system, so that thousands cost no more than one while they wait.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "quorix/platform/Environment.h"

namespace quorix {

class TimerQueue {
public:
    // Times are milliseconds of a clock that only goes forward.
    TimerId Add(std::int64_t now, std::int32_t milliseconds, TimerTick tick);
    void Remove(TimerId timer);

    std::size_t Count() const { return timers_.size(); }
    std::optional<std::int64_t> NextDue() const;

    // What is to be called for the earliest timer that is due, which then waits for its next time; empty when
    // none is due. The call may add and remove timers.
    TimerTick TakeDue(std::int64_t now);

private:
    struct Timer {
        std::int64_t due;
        std::int32_t interval;
        TimerTick tick;
    };

    std::unordered_map<TimerId, Timer> timers_;
    std::set<std::pair<std::int64_t, TimerId>> order_;
    TimerId last_ = 0;
};

}  // namespace quorix
