// The system's errno as the socket error numbers of Environment.h.
#pragma once

#include <cstdint>

namespace quorix {

// 0 stays 0; a number without a counterpart is passed as it is.
std::int32_t SocketErrorFromErrno(int number);

// The pending error of the socket `descriptor`, which is cleared by asking.
std::int32_t PendingSocketError(int descriptor);

}  // namespace quorix
