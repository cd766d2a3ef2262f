#include "apps/console/Capability.h"

#include <cstdio>

// term.h needs curses.h first, and has macros for many common names.
#include <curses.h>
#include <term.h>

namespace quorix::console {

namespace {

char* Find(const char* name) {
    char* text = tigetstr(name);
    const bool isNone = text == nullptr || text == reinterpret_cast<char*>(-1);
    return isNone ? nullptr : text;
}

}  // namespace

void ReadTerminalDescription() {
    int error = 0;
    setupterm(nullptr, fileno(stdout), &error);
}

bool HasCapability(const char* name) { return Find(name) != nullptr; }

void UseCapability(const char* name) {
    if (const char* text = Find(name)) putp(text);
}

}  // namespace quorix::console
