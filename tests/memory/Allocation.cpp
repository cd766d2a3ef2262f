#include "tests/memory/Allocation.h"

#include <cerrno>

// What the C library keeps for those who put their own functions in place of its allocator.
extern "C" {
void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier): its name
void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);      // NOLINT(bugprone-reserved-identifier)
void __libc_free(void* memory);                            // NOLINT(bugprone-reserved-identifier)
}

namespace quorix::testkit {

namespace {

std::size_t countdown = 0;
bool failed = false;
std::ptrdiff_t live = 0;

bool IsDue() {
    if (countdown == 0 || --countdown > 0) return false;
    errno = ENOMEM;
    return failed = true;
}

void* Counted(void* memory) {
    if (memory != nullptr) ++live;
    return memory;
}

}  // namespace

void FailAllocation(std::size_t nth) {
    countdown = nth;
    failed = false;
}

bool AllocationFailed() { return failed; }
std::ptrdiff_t LiveAllocations() { return live; }

extern "C" {

void* malloc(std::size_t size) { return IsDue() ? nullptr : Counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) {
    return IsDue() ? nullptr : Counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) {
    if (IsDue()) return nullptr;
    void* moved = __libc_realloc(memory, size);
    return memory == nullptr ? Counted(moved) : moved;
}

void free(void* memory) {
    if (memory != nullptr) --live;
    __libc_free(memory);
}
}

}  // namespace quorix::testkit
