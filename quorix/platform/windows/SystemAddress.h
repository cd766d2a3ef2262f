// Addresses as the system's calls take and give them. What IPv6 needs is declared by the second Winsock
// alone, whose header cannot stand beside the first one's.
#pragma once

#include <array>

#include "quorix/platform/Environment.h"

namespace quorix::windows {

struct SystemAddress {
    alignas(8) std::array<char, 128> storage{};
    int size = sizeof storage;
};

int FamilyFor(bool ip6);

SystemAddress ToSystem(const Address& address);

// All zero for an address of another family.
Address FromSystem(const void* address);

}  // namespace quorix::windows
