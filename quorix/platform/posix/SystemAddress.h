// Addresses as the system's calls take and give them.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include "quorix/platform/Environment.h"

namespace quorix {

struct SystemAddress {
    sockaddr* Get() { return reinterpret_cast<sockaddr*>(&storage); }

    sockaddr_storage storage{};
    socklen_t size = sizeof storage;
};

SystemAddress ToSystem(const Address& address);

// All zero for an address of another family.
Address FromSystem(const sockaddr* address);

}  // namespace quorix
