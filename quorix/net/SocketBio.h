// The environment's sockets as OpenSSL's transport, so that the reads and writes of TLS raise the same
// notifications as any others.
#pragma once

#include <openssl/bio.h>

#include "quorix/platform/Environment.h"

namespace quorix {

// The caller owns the result; null without memory.
BIO* NewSocketBio(Environment& environment, SocketId socket);

}  // namespace quorix
