// The session through its proxies: what goes out in place of the stream, and what is taken from the proxy.
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

using namespace std::string_literals;

const std::string kServerHeader = "<stream:stream id='s1' from='s' xmlns='jabber:client'>";
const std::string kGreeting = "\5\1\0"s;
const std::string kByAddress = "\5\1\0\1\xC0\0\2\7\x14\x66"s;
const std::string kByName = "\5\1\0\3\1s\x14\x66"s;
const std::string kMethod = "\5\0"s;
const std::string kGranted = "\5\0\0\1\0\0\0\0\0\0"s;

std::string Put(const std::string& text) {
    return "PUT http://s:5222/ HTTP/1.1\r\nUser-Agent: QuoriXServer\r\nHost: s:5222"
           "\r\nContent-Type: multipart/byteranges\r\nCache-Control: no-cache\r\nContent-length:" +
           std::to_string(text.size()) + "\r\nProxy-Connection: Keep-Alive\r\n\r\n" + text + "\r\n";
}

class Proxy : public SessionTest {
protected:
    void ConnectThrough(eProxyType type) {
        env.AddHost("proxy.example", 0xC0000201);
        env.AddHost("s", 0xC0000207);
        session->ProxyType(type);
        session->ProxyHostname(u"proxy.example");
        session->ProxyPort(1080);
        session->Connect();
        env.DoEvents();
    }
};

TEST_F(Proxy, OfHttpGetsEachTextInARequestOfItsOwn) {
    ConnectThrough(KV_HTTPProxy);
    EXPECT_EQ(env.Peer().Destination().ip, 0xC0000201);
    EXPECT_EQ(env.Peer().Destination().port, 1080);
    EXPECT_EQ(Heard(), Put(kHeader));
    Say(kServerHeader);
    EXPECT_EQ(Heard(), Put(kFieldsQuery));
    session->SendXML(u"  \t  ");
    EXPECT_EQ(Heard(), Put("  \t  "));
    EXPECT_EQ(events->outgoing, (Lines{kHeader, kFieldsQuery, "  \t  "}));
}

TEST_F(Proxy, OfHttpIsToldTheLengthInBytesInTheModernMode) {
    session->Mode(KV_Modern);
    ConnectThrough(KV_HTTPProxy);
    Heard();
    session->SendXML(u"<\u00e9\U0001F600>");
    EXPECT_EQ(Heard(), Put("<é\xF0\x9F\x98\x80>"));
}

TEST_F(Proxy, OfHttpHasItsResponsesDroppedWithAllThatIsInTheirChunk) {
    ConnectThrough(KV_HTTPProxy);
    Say("HTTP/1.1 200 OK\r\n\r\n" + kServerHeader);
    Say("hTTp/1.0 200 OK\r\n");
    EXPECT_EQ(events->incoming, Lines());
    Say(kServerHeader);
    EXPECT_EQ(session->SessionID(), u"s1");
    Say("<presence from='a@s'/>");
    Say("http");
    Say("<presence from='b@s'/>");
    EXPECT_EQ(events->incoming, (Lines{kServerHeader, "<presence from='a@s'/>", "<presence from='b@s'/>"}));
}

TEST_F(Proxy, OfSocksOpensTheTunnelBeforeTheStream) {
    ConnectThrough(KV_SOCKS5Proxy);
    EXPECT_EQ(env.Peer().Destination().port, 1080);
    EXPECT_EQ(Heard(), kGreeting);
    Say(kMethod);
    EXPECT_EQ(Heard(), kByAddress);
    Say(kGranted + "bytes behind it are lost");
    EXPECT_EQ(Heard(), kHeader);
    Say(kServerHeader);
    EXPECT_EQ(Heard(), kFieldsQuery);
    EXPECT_EQ(events->outgoing, (Lines{kHeader, kHeader, kFieldsQuery}));
    EXPECT_EQ(events->incoming, Lines{kServerHeader});
}

TEST_F(Proxy, OfSocksTakesTheLoginAndLooksUpTheServer) {
    session->ProxyAuthentication(KV_SocksUserPass);
    session->ProxyUsername(u"joe");
    session->ProxyPassword(u"pw");
    session->ProxyUseRemoteDNS(true);
    env.RemoveHost("s");
    ConnectThrough(KV_SOCKS5Proxy);
    EXPECT_EQ(Heard(), "\5\2\2\0"s);
    Say("\5\2");
    EXPECT_EQ(Heard(), "\1\3joe\2pw"s);
    Say("\1\0"s);
    EXPECT_EQ(Heard(), kByName);
    Say(kGranted);
    EXPECT_EQ(Heard(), kHeader);
}

TEST_F(Proxy, OfSocksReportsAServerWithoutAnAddress) {
    ConnectThrough(KV_SOCKS5Proxy);
    env.RemoveHost("s");
    Heard();
    Say(kMethod);
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(events->lines, Lines{"OnSocketError No valid Hostaddress 100"});
}

// However it goes wrong, nothing is reported but the end of the connection, and the next one begins anew.
TEST_F(Proxy, OfSocksRefusesInSilenceUntilTheProxyCloses) {
    for (const std::string& refusal : {"\5\1\0\1\0\0\0\0\0\0"s, "\5"s, "\0"s, "HTTP/1.1 400\r\n\r\n"s, ""s}) {
        ConnectThrough(KV_SOCKS5Proxy);
        Say(kMethod);
        Heard();
        if (!refusal.empty()) Say(refusal);
        EXPECT_EQ(Heard(), "");
        EXPECT_EQ(events->Take(), Lines());
        env.Peer().Close();
        env.DoEvents();
        EXPECT_EQ(events->Take(), Lines{"OnDisConnected"});
        EXPECT_EQ(events->incoming, Lines());
    }
    ConnectThrough(KV_SOCKS5Proxy);
    EXPECT_EQ(Heard(), kGreeting);
}

}  // namespace
}  // namespace quorix
