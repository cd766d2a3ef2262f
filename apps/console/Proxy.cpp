#include "apps/console/Proxy.h"

#include <glib.h>

#include <memory>

namespace quorix::console {

namespace {

std::string Copy(const char* text) { return text == nullptr ? std::string() : std::string(text); }

eProxyType TypeOf(const std::string& scheme) {
    if (scheme == "socks5") return KV_SOCKS5Proxy;
    return scheme == "http" ? KV_HTTPProxy : KV_NoProxy;
}

}  // namespace

std::optional<Proxy> ParseProxy(const std::string& text) {
    const std::unique_ptr<GUri, decltype(&g_uri_unref)> uri(
        g_uri_parse(text.c_str(), G_URI_FLAGS_HAS_PASSWORD, nullptr), g_uri_unref);
    if (!uri) return {};
    Proxy proxy{TypeOf(g_uri_get_scheme(uri.get())), Copy(g_uri_get_user(uri.get())),
                Copy(g_uri_get_password(uri.get())), Copy(g_uri_get_host(uri.get()))};
    const int port = g_uri_get_port(uri.get());
    const std::string path = g_uri_get_path(uri.get());
    const bool isAddress = !proxy.host.empty() && port > 0 && (path.empty() || path == "/");
    const bool loginFits = proxy.user.empty() || (proxy.type == KV_SOCKS5Proxy && !proxy.password.empty());
    if (proxy.type == KV_NoProxy || !isAddress || !loginFits) return {};
    proxy.port = static_cast<std::uint16_t>(port);
    return proxy;
}

}  // namespace quorix::console
