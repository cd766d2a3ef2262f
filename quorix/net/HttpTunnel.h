// The stream through an HTTP proxy: each text is the body of a PUT request (RFC 2616), and the proxy's
// responses are recognised by their first four characters.
#pragma once

#include <cstdint>

#include "quorix/base/String.h"

namespace quorix {

// One whole request. The announced length is that of `text` in characters; a CR LF follows the text without
// being counted. Proxies know the server by this address; `port` is printed with its sign.
String PutRequest(StringView server, std::int16_t port, StringView text);

// True when a received chunk begins a response ("HTTP" in any case): it is to be dropped as a whole.
bool IsHttpResponse(StringView chunk);

}  // namespace quorix
