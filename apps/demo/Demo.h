#pragma once

namespace quorix::demo {

// True when every step of the demonstration was seen in its order, within ten seconds.
bool RunDemo();

}  // namespace quorix::demo
