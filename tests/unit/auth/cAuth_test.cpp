#include "quorix/auth/SHAHash.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

struct Choice {
    eAuthType type;
    const char* offers;
    String proof;
};

TEST_F(SessionTest, ProvesItsPasswordInTheFormThatTypeAndOffersDemand) {
    session->username(u"u<");
    session->Password(u"a<é");
    session->Resource(u"a&b");
    const char* all = "<digest/><sequence>1</sequence><token>t</token>";
    const String plain = u"<password>a&lt;\u00C3\u00A9</password>";
    const String digest = Concat({u"<digest>", SHAHash(u"s1a<é"), u"</digest>"});
    const String zeroOnce =
        Concat({u"<hash>", SHAHash(SHAHash(Concat({SHAHash(u"a<é"), u"t"}))), u"</hash>"});
    for (const auto& [type, offers, proof] :
         {Choice{KV_PlainAuth, all, plain}, Choice{KV_DigestAuth, "", digest},
          Choice{KV_ZeroKAuth, all, zeroOnce}, Choice{KV_ZeroKAuth, "<digest/><token>t</token>", u""},
          Choice{KV_ZeroKAuth, "<digest/><sequence>1</sequence>", u""}, Choice{KV_AutoAuth, all, zeroOnce},
          Choice{KV_AutoAuth, "<digest/><sequence>5</sequence>", digest},
          Choice{KV_AutoAuth, "<digest/><sequence>70000</sequence><token>t</token>", digest},
          Choice{KV_AutoAuth, "<sequence>-1</sequence><token>t</token>", plain}}) {
        session->AuthType(type);
        OpenStream();
        Heard();
        Say(std::string("<iq type='result'><query xmlns='jabber:iq:auth'>") + offers + "</query></iq>");
        String login =
            Concat({u"<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>u<</username>",
                    proof, u"<resource>a&amp;b</resource></query></iq>"});
        EXPECT_EQ(Heard(), proof.empty() ? "" : BytesFromWire(login)) << type << offers;
    }
}

TEST_F(SessionTest, HashesTheUtf8OfItsSecretsInTheModernMode) {
    session->Mode(KV_Modern);
    session->AuthType(KV_DigestAuth);
    session->Password(u"\u00e9\U0001F600");
    OpenStream();
    Say("<iq type='result'><query xmlns='jabber:iq:auth'><digest/></query></iq>");
    const String digest = SHAHash(std::string_view("s1\xC3\xA9\xF0\x9F\x98\x80"));
    EXPECT_NE(Heard().find("<digest>" + Utf8FromText(digest) + "</digest>"), std::string::npos);
}

TEST(SHAHash, IsThePublishedOneOverBytes) {
    EXPECT_EQ(SHAHash(u"abc"), u"a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(SHAHash(u"\u8BF4"), SHAHash(u"?"));
}

}  // namespace
}  // namespace quorix
