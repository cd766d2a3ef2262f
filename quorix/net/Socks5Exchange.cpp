#include "quorix/net/Socks5Exchange.h"

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

constexpr std::size_t kLongestText = 255;

char Byte(std::uint32_t value) { return static_cast<char>(value & 0xFFU); }

std::string Counted(StringView text) { return Byte(text.size()) + BytesFromWire(text); }

std::string PortBytes(std::uint16_t port) { return {Byte(port >> 8U), Byte(port)}; }

std::string AddressBytes(std::uint32_t ip) {
    return {Byte(ip >> 24U), Byte(ip >> 16U), Byte(ip >> 8U), Byte(ip)};
}

Socks5Answer Login(const Socks5Request& request) {
    if (request.userName.size() > kLongestText || request.password.size() > kLongestText) return {};
    return {"\1" + Counted(request.userName) + Counted(request.password)};
}

Socks5Answer ConnectByName(const Socks5Request& request) {
    if (request.host.size() > kLongestText) return {};
    return {std::string("\5\1\0\3", 4) + Counted(request.host) + PortBytes(request.port)};
}

Socks5Answer ConnectByAddress(const Socks5Request& request, const Socks5Exchange::Resolver& resolve) {
    std::optional<std::uint32_t> ip = resolve(request.host);
    if (!ip) return {{}, false, true};
    return {std::string("\5\1\0\1", 4) + AddressBytes(*ip) + PortBytes(request.port)};
}

bool Succeeded(std::string_view reply) { return reply.substr(0, 2) == std::string_view("\5\0", 2); }

}  // namespace

std::string Socks5Exchange::Greeting(eProxy_Authentication authentication) {
    ++step_;
    if (authentication == KV_SocksNoAuth) return {5, 1, 0};
    return {5, 2, Byte(static_cast<std::uint32_t>(authentication)), 0};
}

Socks5Answer Socks5Exchange::Take(std::string_view reply, const Socks5Request& request,
                                  const Resolver& resolve) {
    bool withLogin = request.authentication == KV_SocksUserPass;
    if (withLogin && step_ == 1) return Advance(Login(request));
    bool connectIsDue = withLogin ? step_ == 2 : request.authentication == KV_SocksNoAuth && step_ == 1;
    if (connectIsDue) {
        return Advance(request.remoteDns ? ConnectByName(request) : ConnectByAddress(request, resolve));
    }
    negotiated_ = Succeeded(reply);
    return {{}, negotiated_, false};
}

Socks5Answer Socks5Exchange::Advance(Socks5Answer answer) {
    if (!answer.bytes.empty()) ++step_;
    return answer;
}

}  // namespace quorix
