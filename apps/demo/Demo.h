#pragma once

#include "quorix/base/String.h"

namespace quorix::demo {

// Prints one line.
void Say(StringView text);

// True when every step of the demonstration was seen in its order, within ten seconds.
bool RunDemo();

}  // namespace quorix::demo
