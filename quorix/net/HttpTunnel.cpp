#include "quorix/net/HttpTunnel.h"

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

constexpr std::string_view kBehindTarget =
    "/ HTTP/1.1\r\n"
    "User-Agent: QuoriXServer\r\n"
    "Host: ";
constexpr std::string_view kBehindHost =
    "\r\n"
    "Content-Type: multipart/byteranges\r\n"
    "Cache-Control: no-cache\r\n"
    "Content-length:";
constexpr std::string_view kBehindLength =
    "\r\n"
    "Proxy-Connection: Keep-Alive\r\n"
    "\r\n";

}  // namespace

std::string PutRequest(const std::string& server, std::int16_t port, std::string_view body) {
    const std::string address = server + ":" + std::to_string(port);
    std::string request = "PUT http://";
    request.append(address).append(kBehindTarget).append(address).append(kBehindHost);
    request.append(std::to_string(body.size())).append(kBehindLength).append(body);
    return request += "\r\n";
}

bool IsHttpResponse(std::string_view chunk) {
    return EqualsIgnoringCase(WireFromBytes(chunk.substr(0, 4)), u"HTTP");
}

}  // namespace quorix
