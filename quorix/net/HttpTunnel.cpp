#include "quorix/net/HttpTunnel.h"

namespace quorix {

String PutRequest(StringView server, std::int16_t port, StringView text) {
    String address = Concat({server, u":", ToString(port)});
    return Concat({u"PUT http://", address,
                   u"/ HTTP/1.1\r\n"
                   u"User-Agent: QuoriXServer\r\n"
                   u"Host: ",
                   address,
                   u"\r\n"
                   u"Content-Type: multipart/byteranges\r\n"
                   u"Cache-Control: no-cache\r\n"
                   u"Content-length:",
                   ToString(static_cast<std::int64_t>(text.size())),
                   u"\r\n"
                   u"Proxy-Connection: Keep-Alive\r\n"
                   u"\r\n",
                   text, u"\r\n"});
}

bool IsHttpResponse(StringView chunk) { return EqualsIgnoringCase(chunk.substr(0, 4), u"HTTP"); }

}  // namespace quorix
