#include "quorix/platform/Timer.h"

#include <utility>

#include "quorix/platform/Environment.h"

namespace quorix {

void Timer::Start(std::int32_t milliseconds, std::function<void()> tick) {
    Stop();
    environment_ = &Environment::Current();
    id_ = environment_->SetTimer(milliseconds, std::move(tick));
}

void Timer::Stop() {
    if (id_ != 0) environment_->KillTimer(std::exchange(id_, 0));
}

}  // namespace quorix
