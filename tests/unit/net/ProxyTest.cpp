#include <gtest/gtest.h>

#include "quorix/net/HttpTunnel.h"
#include "quorix/net/Socks5Exchange.h"

namespace quorix {
namespace {

using namespace std::string_literals;

Socks5Request Request(eProxy_Authentication authentication, bool remoteDns) {
    return {authentication, u"joe", u"p\u00E9", u"chat.example", 0x1466, remoteDns};
}

std::optional<std::uint32_t> Known(StringView) { return 0xC0000207; }
std::optional<std::uint32_t> Unknown(StringView) { return {}; }

// What each reply was answered with; "!" marks the one that began the stream, "?" an unknown host.
std::string Play(Socks5Exchange& exchange, const Socks5Request& request,
                 const std::vector<std::string>& replies, const Socks5Exchange::Resolver& resolve = Known) {
    std::string answers;
    for (const std::string& reply : replies) {
        Socks5Answer answer = exchange.Take(reply, request, resolve);
        answers += answer.bytes + (answer.negotiated ? "!" : "") + (answer.unknownHost ? "?" : "") + "|";
    }
    return answers;
}

const std::string kConnectByAddress = "\5\1\0\1\xC0\0\2\7\x14\x66"s;
const std::string kConnectByName = "\5\1\0\3\x0C"s + "chat.example\x14\x66";
const std::string kLogin = "\1\3joe\2p\xE9"s;

struct ExchangeCase {
    const char* name;
    eProxy_Authentication authentication;
    bool remoteDns;
    std::string greeting;
    std::vector<std::string> replies;
    std::string answers;
    bool negotiated;
};

class Socks5 : public ::testing::TestWithParam<ExchangeCase> {};

TEST_P(Socks5, AnswersEachReplyOfTheProxy) {
    const ExchangeCase& row = GetParam();
    Socks5Exchange exchange;
    EXPECT_EQ(exchange.Greeting(row.authentication), row.greeting);
    EXPECT_EQ(Play(exchange, Request(row.authentication, row.remoteDns), row.replies), row.answers);
    EXPECT_EQ(exchange.IsNegotiated(), row.negotiated);
}

const std::string kGranted = "\5\0\0\1\0\0\0\0\0\0"s;
const std::string kRefused = "\5\2\0\1\0\0\0\0\0\0"s;
const std::string kPlain = "\5\1\0"s;
const std::string kOffer = "\5\2\2\0"s;

INSTANTIATE_TEST_SUITE_P(
    Exchanges, Socks5,
    ::testing::Values(
        ExchangeCase{"NoLoginByAddress",
                     KV_SocksNoAuth,
                     false,
                     kPlain,
                     {"\5\0"s, kGranted},
                     kConnectByAddress + "|!|",
                     true},
        ExchangeCase{
            "NoLoginByName", KV_SocksNoAuth, true, kPlain, {"\5\0"s, kGranted}, kConnectByName + "|!|", true},
        ExchangeCase{"LoginByAddress",
                     KV_SocksUserPass,
                     false,
                     kOffer,
                     {"\5\2", "\1\0"s, kGranted},
                     kLogin + "|" + kConnectByAddress + "|!|",
                     true},
        ExchangeCase{"LoginByName",
                     KV_SocksUserPass,
                     true,
                     kOffer,
                     {"\5\2", "\1\0"s, kGranted},
                     kLogin + "|" + kConnectByName + "|!|",
                     true},
        ExchangeCase{"NoAcceptableMethodIsNotLookedAt",
                     KV_SocksNoAuth,
                     true,
                     kPlain,
                     {"\5\xFF"},
                     kConnectByName + "|",
                     false},
        ExchangeCase{"AWrongPasswordIsNotLookedAt",
                     KV_SocksUserPass,
                     true,
                     kOffer,
                     {"\5\2", "\1\1"},
                     kLogin + "|" + kConnectByName + "|",
                     false},
        ExchangeCase{
            "Refused", KV_SocksNoAuth, true, kPlain, {"\5\0"s, kRefused}, kConnectByName + "||", false},
        ExchangeCase{"AnotherVersion",
                     KV_SocksNoAuth,
                     true,
                     kPlain,
                     {"\5\0"s, "\4\0\0"s},
                     kConnectByName + "||",
                     false},
        ExchangeCase{"OneByteOfAReply",
                     KV_SocksNoAuth,
                     true,
                     kPlain,
                     {"\5\0"s, "\5", "\0"s},
                     kConnectByName + "|||",
                     false},
        ExchangeCase{"AMethodReplyInTwoPieces",
                     KV_SocksNoAuth,
                     true,
                     kPlain,
                     {"\5", "\0"s, kGranted},
                     kConnectByName + "||!|",
                     true},
        ExchangeCase{"AnEmptyReply", KV_SocksNoAuth, true, kPlain, {"", ""}, kConnectByName + "||", false},
        ExchangeCase{"GrantedAtLast",
                     KV_SocksNoAuth,
                     true,
                     kPlain,
                     {"\5\0"s, kRefused, kGranted},
                     kConnectByName + "||!|",
                     true},
        ExchangeCase{"AnUnknownMethodWaitsForTheLastReply",
                     static_cast<eProxy_Authentication>(7),
                     true,
                     "\5\2\7\0"s,
                     {"\5\7", kGranted},
                     "|!|",
                     true}),
    [](const auto& row) { return row.param.name; });

TEST(Socks5Exchange, AnUnknownHostLeavesItWhereItIs) {
    Socks5Exchange exchange;
    exchange.Greeting(KV_SocksNoAuth);
    Socks5Request request = Request(KV_SocksNoAuth, false);
    EXPECT_EQ(Play(exchange, request, {"\5\0"s}, Unknown), "?|");
    EXPECT_EQ(Play(exchange, request, {"\5\0"s}), kConnectByAddress + "|");
}

TEST(Socks5Exchange, ASecondGreetingCountsAsAStep) {
    Socks5Exchange exchange;
    exchange.Greeting(KV_SocksNoAuth);
    EXPECT_EQ(exchange.Greeting(KV_SocksNoAuth), kPlain);
    EXPECT_EQ(Play(exchange, Request(KV_SocksNoAuth, true), {"\5\xFF", "\5\0"s}), "|!|");
}

TEST(Socks5Exchange, TextsOfUpTo255CharactersFit) {
    for (std::size_t length : {0U, 254U, 255U, 256U}) {
        const String text(length, u'x');
        Socks5Exchange exchange;
        exchange.Greeting(KV_SocksUserPass);
        Socks5Request request{KV_SocksUserPass, text, u"", u"", 0, true};
        std::size_t sent = exchange.Take("\5\2", request, Known).bytes.size();
        EXPECT_EQ(sent, length > 255 ? 0 : 3 + length);
        request.userName.clear();
        request.password = text;
        Socks5Exchange other;
        other.Greeting(KV_SocksUserPass);
        EXPECT_EQ(other.Take("\5\2", request, Known).bytes.size(), sent);
        Socks5Exchange third;
        third.Greeting(KV_SocksNoAuth);
        request = {KV_SocksNoAuth, u"", u"", text, 0, true};
        EXPECT_EQ(third.Take("\5\0"s, request, Known).bytes.size(), length > 255 ? 0 : 7 + length);
    }
}

TEST(HttpTunnel, WrapsATextIntoItsOwnRequest) {
    EXPECT_EQ(PutRequest(u"s", 5222, u"<a/>"),
              u"PUT http://s:5222/ HTTP/1.1\r\n"
              u"User-Agent: QuoriXServer\r\n"
              u"Host: s:5222\r\n"
              u"Content-Type: multipart/byteranges\r\n"
              u"Cache-Control: no-cache\r\n"
              u"Content-length:4\r\n"
              u"Proxy-Connection: Keep-Alive\r\n"
              u"\r\n"
              u"<a/>\r\n");
    EXPECT_NE(PutRequest(u"s", -5536, u"").find(u"http://s:-5536/"), String::npos);
}

TEST(HttpTunnel, KnowsAResponseByItsFirstFourCharacters) {
    for (StringView response : {u"HTTP/1.1 200 OK\r\n", u"http/1.0", u"hTtP"}) {
        EXPECT_TRUE(IsHttpResponse(response));
    }
    for (StringView other : {u"", u"HTT", u"<stream:stream>", u" HTTP/1.1", u"TP/1.1 200"}) {
        EXPECT_FALSE(IsHttpResponse(other));
    }
}

}  // namespace
}  // namespace quorix
