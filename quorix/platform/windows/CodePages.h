#pragma once

namespace quorix::windows {

// Lends the code pages, once in a process.
void LendCodePages();

}  // namespace quorix::windows
