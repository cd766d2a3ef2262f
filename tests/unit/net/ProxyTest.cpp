#include <gtest/gtest.h>

#include "quorix/net/Socks5Exchange.h"

namespace quorix {
namespace {

constexpr eProxy_Authentication kNone = KV_SocksNoAuth;
constexpr eProxy_Authentication kUserPass = KV_SocksUserPass;

std::optional<std::uint32_t> Known(StringView) { return 0xC0000207; }

TEST(Socks5, TextsOfUpTo255CharactersFit) {
    for (std::size_t length : {255U, 256U}) {
        const String text(length, u'x');
        auto sent = [](const Socks5Request& request) {
            Socks5Exchange exchange;
            exchange.Greeting(request.authentication);
            return exchange.Take("\5\2", request, Known).bytes.size();
        };
        EXPECT_EQ(sent({kUserPass, text, u"", u"", 0, true}), length > 255 ? 0 : 3 + length);
        EXPECT_EQ(sent({kUserPass, u"", text, u"", 0, true}), length > 255 ? 0 : 3 + length);
        EXPECT_EQ(sent({kNone, u"", u"", text, 0, true}), length > 255 ? 0 : 7 + length);
    }
}

}  // namespace
}  // namespace quorix
