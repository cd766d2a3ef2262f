// What the sockets of one thread share: the table by which a notification finds its socket, the texts of
// the error numbers, and the resolver.
#pragma once

#include <memory>
#include <optional>
#include <unordered_map>

#include "quorix/base/String.h"
#include "quorix/platform/Environment.h"

namespace quorix {

class SocketCore;

// The English text of a socket error number, "" for a number that is not listed.
StringView SocketErrorText(std::int32_t number);

// What is reported for an attempt that took too long.
constexpr std::int32_t kTimedOut = 0;
constexpr StringView kTimedOutText = u"Timeout";

// What is reported for a host that does not resolve.
constexpr std::int32_t kNoSuchHost = 100;
constexpr StringView kNoSuchHostText = u"No valid Hostaddress";

// A certificate that is not trusted, in a connection that insists on trust, and a SOCKS5 proxy that refuses.
constexpr std::int32_t kUntrusted = 101;
constexpr std::int32_t kProxyRefused = 102;

// The IPv4 address of a host name or dotted address (text, ASCII), in host byte order. Blocks while looking
// up. None when there is no such host, and for the broadcast address.
std::optional<std::uint32_t> ResolveHost(Environment& environment, StringView host);

// The live sockets of a thread, by handle. Each socket shares the ownership of the table, so that the table
// outlives the thread's last socket. A notification for a handle that no socket owns is dropped.
class SocketTable final : public SocketSink {
public:
    static std::shared_ptr<SocketTable> OfThisThread();

    void Insert(SocketId handle, SocketCore& socket);
    void Remove(SocketId handle, const SocketCore& socket);

    // These keep the socket alive until they return.
    void OnSocketEvent(SocketId handle, std::int32_t event, std::int32_t error) override;
    void OnSocketTimer(SocketId handle) override;

private:
    std::shared_ptr<SocketCore> Find(SocketId handle) const;

    std::unordered_map<SocketId, SocketCore*> sockets_;
};

}  // namespace quorix
