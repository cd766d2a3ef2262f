/// \class quorix::ConnectTarget
/// Where to connect.
#pragma once

#include <cstdint>
#include <string>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

struct QUORIX_API ConnectTarget {
    String host;  ///< a name or a literal address (text)
    std::uint16_t port = 0;

    /// When set: the service (of `host` as its domain) whose SRV records say where to connect. Where there
    /// are none, host and port do.
    std::string service = {};
};

}  // namespace quorix
