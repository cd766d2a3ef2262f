// The client's side of SOCKS version 5 (RFC 1928) with its user name and password (RFC 1929): bytes in,
// bytes out. It opens no socket and looks up no name itself.
//
// Each chunk that the proxy sends counts as one reply, whole or not. What the proxy chose is not looked at:
// the exchange goes on by its own setting, and only the last reply decides. A refusal ends in silence.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "quorix/base/Enumerations.h"
#include "quorix/base/String.h"

namespace quorix {

// Texts go out one byte a character.
struct Socks5Request {
    eProxy_Authentication authentication = KV_SocksNoAuth;
    String userName;
    String password;
    String host;
    std::uint16_t port = 0;
    bool remoteDns = false;  // the proxy looks up the host
};

// What to do about a chunk: send `bytes` (if any), begin the stream, or report that the host is unknown.
struct Socks5Answer {
    std::string bytes;
    bool negotiated = false;
    bool unknownHost = false;
};

class Socks5Exchange {
public:
    using Resolver = std::function<std::optional<std::uint32_t>(StringView host)>;

    // The first message, which goes out in place of whatever was to be sent. Asked again, it counts again as
    // a step.
    std::string Greeting(eProxy_Authentication authentication);

    // Answers the proxy's next reply. A text of more than 255 characters cannot be sent, so nothing is, and
    // nothing is when the host is unknown; the exchange then stays where it is.
    Socks5Answer Take(std::string_view reply, const Socks5Request& request, const Resolver& resolve);

    bool IsNegotiated() const { return negotiated_; }

private:
    Socks5Answer Advance(Socks5Answer answer);

    std::int16_t step_ = 0;  // messages sent
    bool negotiated_ = false;
};

}  // namespace quorix
