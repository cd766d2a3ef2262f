#include "quorix/auth/cAuth.h"

#include <gtest/gtest.h>

#include "quorix/auth/SHAHash.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {
namespace {

// A session that only knows its account and remembers what it was told to send.
class AccountLink : public SessionLink {
public:
    void SendXML(StringView xml) override { sent += xml; }
    bool IsConnected() const override { return true; }
    String GetNextID() override { return u"KV_1"; }
    String ServerAddress() const override { return u"s"; }
    String username() const override { return u"u<"; }
    String Password() const override { return u"a<é"; }
    String Resource() const override { return u"a&b"; }
    String MyJid() const override { return u"u@s"; }
    LoginFacts Login() const override { return login; }
    eItemType FindItemType(StringView /*jid*/) override { return KV_Unknown; }
    bool LeaveRoom(StringView /*jid*/, StringView /*nickname*/) override { return false; }
    void ForEachSink(const std::function<void(SessionEvents&)>& /*raise*/) override {}

    LoginFacts login;
    String sent;
};

String Sent(const LoginFacts& login) {
    auto link = std::make_shared<AccountLink>();
    link->login = login;
    cAuth auth;
    auth.SetSession(link);
    auth.SendAuth();
    return link->sent;
}

String Request(StringView proof) {
    return Concat({u"<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>u<</username>",
                   proof, u"<resource>a&amp;b</resource></query></iq>"});
}

const String kPlain = Request(u"<password>a&lt;\u00C3\u00A9</password>");
const String kDigest = Request(Concat({u"<digest>", SHAHash(u"ida<é"), u"</digest>"}));
const String kZeroOnce =
    Request(Concat({u"<hash>", SHAHash(SHAHash(Concat({SHAHash(u"a<é"), u"t"}))), u"</hash>"}));

struct Choice {
    eAuthType type;
    bool digest;
    std::int32_t sequence;
    StringView token;
    String sent;
};

class LoginChoice : public ::testing::TestWithParam<Choice> {};

TEST_P(LoginChoice, SendsOneForm) {
    const Choice& choice = GetParam();
    EXPECT_EQ(Sent({choice.type, u"id", choice.digest, choice.sequence, String(choice.token)}), choice.sent);
}

INSTANTIATE_TEST_SUITE_P(Forms, LoginChoice,
                         ::testing::Values(Choice{KV_PlainAuth, true, 1, u"t", kPlain},
                                           Choice{KV_DigestAuth, false, 1, u"t", kDigest},
                                           Choice{KV_ZeroKAuth, true, 1, u"t", kZeroOnce},
                                           Choice{KV_ZeroKAuth, true, 0, u"t", u""},
                                           Choice{KV_ZeroKAuth, true, 1, u"", u""},
                                           Choice{KV_AutoAuth, true, 1, u"t", kZeroOnce},
                                           Choice{KV_AutoAuth, true, 5, u"", kDigest},
                                           Choice{KV_AutoAuth, false, -1, u"t", kPlain},
                                           Choice{static_cast<eAuthType>(9), true, 1, u"t", u""}));

TEST(SHAHash, IsThePublishedOneOverBytes) {
    EXPECT_EQ(SHAHash(u"abc"), u"a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(SHAHash(u"\u8BF4"), SHAHash(u"?"));
}

TEST(Auth, NeedsASession) {
    EXPECT_EQ(ErrorOf([] { cAuth().SendAuth(); }), ERR_ObjectNotSet);
}

}  // namespace
}  // namespace quorix
