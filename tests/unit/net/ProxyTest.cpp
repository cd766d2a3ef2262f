#include <gtest/gtest.h>

#include "quorix/net/Socks5Exchange.h"

namespace quorix {
namespace {

using namespace std::string_literals;

const std::string kConnectByAddress = "\5\1\0\1\xC0\0\2\7\x14\x66"s;
const std::string kConnectByName = "\5\1\0\3\x0C"s + "chat.example\x14\x66";
const std::string kLogin = "\1\3joe\2p\xE9"s;
const std::string kGranted = "\5\0\0\1\0\0\0\0\0\0"s;
const std::string kRefused = "\5\2\0\1\0\0\0\0\0\0"s;

constexpr eProxy_Authentication kNone = KV_SocksNoAuth;
constexpr eProxy_Authentication kUserPass = KV_SocksUserPass;
constexpr auto kOther = static_cast<eProxy_Authentication>(7);

std::optional<std::uint32_t> Known(StringView) { return 0xC0000207; }

Socks5Request Request(eProxy_Authentication authentication, bool remoteDns) {
    return {authentication, u"joe", u"p\u00E9", u"chat.example", 0x1466, remoteDns};
}

// What each reply was answered with; "!" marks the one that began the stream.
std::string Play(Socks5Exchange& exchange, const Socks5Request& request,
                 const std::vector<std::string>& replies) {
    std::string answers;
    for (const std::string& reply : replies) {
        Socks5Answer answer = exchange.Take(reply, request, Known);
        answers += answer.bytes + (answer.negotiated ? "!" : "") + "|";
        EXPECT_EQ(exchange.IsNegotiated(), answer.negotiated);
    }
    return answers;
}

TEST(Socks5, AnswersEachReplyOfTheProxyHoweverItIsCut) {
    struct Row {
        const char* what;
        Socks5Request request;
        std::vector<std::string> replies;
        std::string answers;
    };
    const std::string byName = kConnectByName + "|";
    const std::string byAddress = kConnectByAddress + "|";
    const std::string login = kLogin + "|";
    const std::vector<Row> rows = {
        {"by address", Request(kNone, false), {"\5\0"s, kGranted}, byAddress + "!|"},
        {"by name", Request(kNone, true), {"\5\0"s, kGranted}, byName + "!|"},
        {"login", Request(kUserPass, false), {"\5\2", "\1\0"s, kGranted}, login + byAddress + "!|"},
        {"wrong password", Request(kUserPass, true), {"\5\2", "\1\1"}, login + byName},
        {"refused, then granted", Request(kNone, true), {"\5\0"s, kRefused, kGranted}, byName + "|!|"},
        {"cut in the last", Request(kNone, true), {"\5\0"s, "\5", "\0"s}, byName + "||"},
        {"cut in the first", Request(kNone, true), {"\5", "\0"s, kGranted}, byName + "|!|"},
        {"empty", Request(kNone, true), {"", ""}, byName + "|"},
        {"unknown method", Request(kOther, true), {"\5\7", kGranted}, "|!|"},
    };
    for (const Row& row : rows) {
        Socks5Exchange exchange;
        exchange.Greeting(row.request.authentication);
        EXPECT_EQ(Play(exchange, row.request, row.replies), row.answers) << row.what;
    }
}

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
