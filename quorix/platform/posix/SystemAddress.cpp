#include "quorix/platform/posix/SystemAddress.h"

#include <arpa/inet.h>

#include <array>
#include <cstring>

namespace quorix {

namespace {

template <class Native>
SystemAddress Stored(const Native& native) {
    SystemAddress result;
    std::memcpy(&result.storage, &native, sizeof native);
    result.size = sizeof native;
    return result;
}

Address FromIp6(const sockaddr_in6& native) {
    Address result{0, ntohs(native.sin6_port), Ip6()};
    std::memcpy(result.ip6->data(), &native.sin6_addr, result.ip6->size());
    return result;
}

}  // namespace

SystemAddress ToSystem(const Address& address) {
    if (address.ip6) {
        sockaddr_in6 native{};
        native.sin6_family = AF_INET6;
        native.sin6_port = htons(address.port);
        std::memcpy(&native.sin6_addr, address.ip6->data(), address.ip6->size());
        return Stored(native);
    }
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_port = htons(address.port);
    native.sin_addr.s_addr = htonl(address.ip);
    return Stored(native);
}

Address FromSystem(const sockaddr* address) {
    if (address->sa_family == AF_INET6) return FromIp6(*reinterpret_cast<const sockaddr_in6*>(address));
    if (address->sa_family != AF_INET) return {};
    const auto& native = *reinterpret_cast<const sockaddr_in*>(address);
    return {ntohl(native.sin_addr.s_addr), ntohs(native.sin_port)};
}

String AddressText(const Address& address) {
    if (!address.ip6) return DottedAddress(address.ip);
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(AF_INET6, address.ip6->data(), text.data(), text.size());
    std::string_view ascii(text.data());
    return {ascii.begin(), ascii.end()};
}

}  // namespace quorix
