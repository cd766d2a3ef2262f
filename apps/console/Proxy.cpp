#include "apps/console/Proxy.h"

#include <charconv>

namespace quorix::console {

namespace {

// Takes `prefix` off the front of `text`, if it is there.
bool Take(std::string& text, const std::string& prefix) {
    if (text.compare(0, prefix.size(), prefix) != 0) return false;
    text.erase(0, prefix.size());
    return true;
}

bool TakeLogin(std::string& text, Proxy& proxy) {
    std::size_t at = text.rfind('@');
    if (at == std::string::npos) return true;
    std::string login = text.substr(0, at);
    text.erase(0, at + 1);
    std::size_t colon = login.find(':');
    if (proxy.type != KV_SOCKS5Proxy || colon == std::string::npos) return false;
    proxy.withLogin = true;
    proxy.user = login.substr(0, colon);
    proxy.password = login.substr(colon + 1);
    return true;
}

bool TakeAddress(const std::string& text, Proxy& proxy) {
    std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return false;
    proxy.host = text.substr(0, colon);
    const char* end = text.data() + text.size();
    auto [next, error] = std::from_chars(text.data() + colon + 1, end, proxy.port);
    return error == std::errc() && next == end && proxy.port != 0;
}

}  // namespace

std::optional<Proxy> ParseProxy(std::string text) {
    Proxy proxy;
    if (Take(text, "socks5://")) proxy.type = KV_SOCKS5Proxy;
    if (proxy.type == KV_NoProxy && Take(text, "http://")) proxy.type = KV_HTTPProxy;
    bool whole = proxy.type != KV_NoProxy && TakeLogin(text, proxy) && TakeAddress(text, proxy);
    return whole ? std::optional(proxy) : std::nullopt;
}

}  // namespace quorix::console
