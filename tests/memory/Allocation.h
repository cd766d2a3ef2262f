// Lets one allocation of the whole process fail, whoever makes it, and counts those that are alive.
#pragma once

#include <cstddef>

namespace quorix::testkit {

// The n-th allocation from now (1 is the next) finds no memory; 0 lets all succeed.
void FailAllocation(std::size_t nth);

// Whether the one that was to fail has come.
bool AllocationFailed();

std::ptrdiff_t LiveAllocations();

}  // namespace quorix::testkit
