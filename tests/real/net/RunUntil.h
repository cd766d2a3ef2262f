// Waiting inside the thread's message loop.
#pragma once

#include <functional>

namespace quorix::real {

// Runs the loop until `done` or, after `seconds`, gives up. Returns what `done` says in the end.
bool RunUntil(const std::function<bool()>& done, int seconds = 10);

}  // namespace quorix::real
