// What comes from outside, made safe to show: a stranger's text can neither move the cursor, nor look like a
// line of the console's own, nor turn the order of what stands around it.
#pragma once

#include <string>
#include <string_view>

namespace quorix::console {

enum class Lines { one, many };

// Control and invisible format characters become marks such as <U+001B>, bytes that are no UTF-8 become
// U+FFFD, a tab a blank. With Lines::many line breaks of every kind become "\n", with Lines::one marks. Text
// that runs from right to left is isolated from what surrounds it, each line for itself.
std::string Clean(std::string_view utf8, Lines lines);

}  // namespace quorix::console
