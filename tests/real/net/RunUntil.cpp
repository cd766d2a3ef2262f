#include "tests/real/net/RunUntil.h"

#include "quorix/platform/MessageLoop.h"

namespace quorix::real {

namespace {

constexpr std::int32_t kLookInterval = 10;  // milliseconds

}  // namespace

bool RunUntil(const std::function<bool()>& done, int seconds) {
    Environment& environment = Environment::Current();
    std::int64_t deadline = environment.Milliseconds() + std::int64_t{seconds} * 1000;
    TimerId timer = environment.SetTimer(kLookInterval, [] { MessageLoop::Quit(); });
    while (!done() && environment.Milliseconds() < deadline) MessageLoop::Run();
    environment.KillTimer(timer);
    return done();
}

}  // namespace quorix::real
