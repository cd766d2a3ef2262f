// Waiting inside the thread's message loop.
#pragma once

#include <functional>

#include "quorix/platform/MessageLoop.h"

namespace quorix::real {

// Runs the loop until `done` or, after `seconds`, gives up. Asks no more once it has held: it may have
// changed something.
inline bool RunUntil(const std::function<bool()>& done, int seconds = 10) {
    constexpr std::int32_t kLookInterval = 10;  // milliseconds
    Environment& environment = Environment::Current();
    std::int64_t deadline = environment.Milliseconds() + std::int64_t{seconds} * 1000;
    TimerId timer = environment.SetTimer(kLookInterval, [] { MessageLoop::Quit(); });
    bool isDone = done();
    while (!isDone && environment.Milliseconds() < deadline) {
        MessageLoop::Run();
        isDone = done();
    }
    environment.KillTimer(timer);
    return isDone;
}

}  // namespace quorix::real
