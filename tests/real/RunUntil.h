// Waiting inside the thread's message loop.
#pragma once

#include <chrono>
#include <functional>

#include "quorix/platform/Environment.h"
#include "quorix/platform/MessageLoop.h"

namespace quorix::real {

// Runs the loop until `done` or, after `seconds`, gives up. Asks no more once it has held: it may have
// changed something.
inline bool RunUntil(const std::function<bool()>& done, int seconds = 10) {
    using Clock = std::chrono::steady_clock;
    constexpr std::int32_t kLookInterval = 10;  // milliseconds
    Environment& environment = Environment::Current();
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(seconds);
    TimerId timer = environment.SetTimer(kLookInterval, [] { MessageLoop::Quit(); });
    bool isDone = done();
    while (!isDone && Clock::now() < deadline) {
        MessageLoop::Run();
        isDone = done();
    }
    environment.KillTimer(timer);
    return isDone;
}

}  // namespace quorix::real
