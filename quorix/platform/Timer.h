/// \class quorix::Timer
/// A timer that belongs to one object and ends with it.
///
/// Threads: it ticks in the message loop of the thread that started it.
#pragma once

#include <cstdint>
#include <functional>

#include "quorix/base/Export.h"

namespace quorix {

class Environment;

class QUORIX_API Timer {
public:
    Timer() = default;
    ~Timer() { Stop(); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Calls `tick` every `milliseconds` (10 at least) from now on, in place of what was started before. The
    /// tick may stop or restart its timer, and end the timer's owner.
    void Start(std::int32_t milliseconds, std::function<void()> tick);

    void Stop();

    bool IsRunning() const { return id_ != 0; }

private:
    Environment* environment_ = nullptr;
    std::int32_t id_ = 0;
};

}  // namespace quorix
