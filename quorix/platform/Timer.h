// A timer that belongs to one object and ends with it.
#pragma once

#include <utility>

#include "quorix/platform/Environment.h"

namespace quorix {

class Timer {
public:
    Timer() = default;
    ~Timer() { Stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // Calls `tick` every `milliseconds` from now on, in place of what was started before. The tick may stop
    // or restart its timer, and end the timer's owner.
    void Start(std::int32_t milliseconds, TimerTick tick) {
        Stop();
        environment_ = &Environment::Current();
        id_ = environment_->SetTimer(milliseconds, std::move(tick));
    }

    void Stop() {
        if (id_ != 0) environment_->KillTimer(std::exchange(id_, 0));
    }

    bool IsRunning() const { return id_ != 0; }

private:
    Environment* environment_ = nullptr;
    TimerId id_ = 0;
};

}  // namespace quorix
