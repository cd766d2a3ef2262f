#include "quorix/platform/windows/SystemAddress.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <cstring>

namespace quorix {
namespace windows {
namespace {

template <class Native>
SystemAddress Stored(const Native& native) {
    SystemAddress result;
    std::memcpy(result.storage.data(), &native, sizeof native);
    result.size = sizeof native;
    return result;
}

Address FromIp6(const sockaddr_in6& native) {
    Address result{0, ntohs(native.sin6_port), Ip6()};
    std::memcpy(result.ip6->data(), &native.sin6_addr, result.ip6->size());
    return result;
}

}  // namespace

int FamilyFor(bool ip6) { return ip6 ? AF_INET6 : AF_INET; }

SystemAddress ToSystem(const Address& address) {
    if (address.ip6) {
        sockaddr_in6 native = {};
        native.sin6_family = AF_INET6;
        native.sin6_port = htons(address.port);
        std::memcpy(&native.sin6_addr, address.ip6->data(), address.ip6->size());
        return Stored(native);
    }
    sockaddr_in native = {};
    native.sin_family = AF_INET;
    native.sin_port = htons(address.port);
    native.sin_addr.s_addr = htonl(address.ip);
    return Stored(native);
}

Address FromSystem(const void* address) {
    const int family = static_cast<const sockaddr*>(address)->sa_family;
    if (family == AF_INET6) return FromIp6(*static_cast<const sockaddr_in6*>(address));
    if (family != AF_INET) return {};
    const auto& native = *static_cast<const sockaddr_in*>(address);
    return {ntohl(native.sin_addr.s_addr), ntohs(native.sin_port)};
}

}  // namespace windows

String AddressText(const Address& address) {
    if (!address.ip6) return DottedAddress(address.ip);
    std::array<wchar_t, INET6_ADDRSTRLEN> text = {};
    InetNtopW(AF_INET6, address.ip6->data(), text.data(), text.size());
    return reinterpret_cast<const char16_t*>(text.data());
}

}  // namespace quorix
