// The stream through an HTTP proxy: each text is the body of a PUT request (RFC 2616), and the proxy's
// responses are recognised by their first four characters.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quorix/base/String.h"

namespace quorix {

// One whole request. A CR LF follows the body without being counted in its announced length. Proxies know the
// server by this address; `port` is printed with its sign.
std::string PutRequest(const std::string& server, std::int16_t port, std::string_view body);

// True when a received chunk begins a response ("HTTP" in any case): it is to be dropped as a whole.
bool IsHttpResponse(std::string_view chunk);

}  // namespace quorix
