// A SOCKS5 proxy's replies, whole and cut, to both kinds of login.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "quorix/base/WireText.h"
#include "quorix/net/Socks5Exchange.h"

namespace quorix {
namespace {

constexpr std::size_t kLongestMessage = 3 + 255 + 255;

std::optional<std::uint32_t> Resolve(StringView host) {
    return host.empty() ? std::nullopt : std::optional<std::uint32_t>(0x7F000001);
}

void Check(const Socks5Answer& answer, std::string_view reply, bool isNegotiated) {
    bool granted = reply.starts_with(std::string_view("\5\0", 2));
    if (answer.bytes.size() > kLongestMessage) std::abort();
    if (answer.negotiated && (!granted || !answer.bytes.empty() || !isNegotiated)) std::abort();
}

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    FuzzedDataProvider input(data, size);
    auto text = [&] { return WireFromBytes(input.ConsumeRandomLengthString(300)); };
    Socks5Request request{static_cast<eProxy_Authentication>(input.ConsumeIntegralInRange(0, 3)),
                          text(),
                          text(),
                          text(),
                          5222,
                          input.ConsumeBool()};
    Socks5Exchange exchange;
    exchange.Greeting(request.authentication);
    while (input.remaining_bytes() > 0 && !exchange.IsNegotiated()) {
        std::string reply = input.ConsumeRandomLengthString();
        Check(exchange.Take(reply, request, Resolve), reply, exchange.IsNegotiated());
    }
    return 0;
}
