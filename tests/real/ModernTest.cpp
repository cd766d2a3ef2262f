// The modern mode on servers that people run: what goes wrong is told, and text of every script arrives.
#include "tests/real/Person.h"

namespace quorix::real {
namespace {

constexpr StringView kScripts = u"é 😀 鷹 한국어";
constexpr StringView kLetters = u"é鷹한국어";

class User : public Person {
public:
    User(const RealServer& server, StringView name, StringView resource = u"home")
        : Person(server.Port(), name, resource) {
        session().Mode(KV_Modern);
        session().AuthType(KV_PlainAuth);  // the packages' Prosody takes nothing else
    }

    bool LogIn() {
        session().Connect();
        return AwaitEvent("OnAuthorized");
    }
    String FullJid() const { return Concat({jid, u"/", (*this)->Resource()}); }

private:
    cSession& session() const { return *operator->(); }
};

class Modern : public RealServerTest {};

struct Failure {
    const char* what;
    void (*provoke)(User& user, RealServer& server);
    const char* told[3];  // by ejabberd, Prosody, jabberd2
};

const Failure kFailures[] = {
    {"a wrong password",
     [](User& user, RealServer& /*server*/) {
         user->Password(u"wrong");
         user->Connect();
     },
     {"401 not-authorized", "401 not-authorized", "401 "}},
    // Prosody does not answer.
    {"an unknown user",
     [](User& user, RealServer& /*server*/) {
         user->username(u"nobody");
         user->LoginTimeout(5);
         user->Connect();
     },
     {"401 not-authorized", "408 No login in time", "401 "}},
    {"an account that is there",
     [](User& user, RealServer& /*server*/) { user->Connect(true); },
     {"409 User already exists", "409 The requested username already exists.", "409 conflict"}},
    {"a password in the clear",
     [](User& user, RealServer& /*server*/) {
         user->AuthType(KV_AutoAuth);
         user->username(u"told.new");
         user->Connect(true);
     },
     {"0 The password would go out in the clear", "0 The password would go out in the clear",
      "0 The password would go out in the clear"}},
    {"a stanza too big",
     [](User& user, RealServer& /*server*/) {
         user->MaxStanzaSize(2000);
         if (!user.LogIn()) return;
         user->SendMyPresence();
         user->CreateMessage(user.FullJid(), MSG_Chat, String(2000, u'x'), u"")->SendMessage();
     },
     {"0 A stanza is longer than MaxStanzaSize", "0 A stanza is longer than MaxStanzaSize",
      "0 A stanza is longer than MaxStanzaSize"}},
    {"a second login",
     [](User& user, RealServer& server) {
         User second(server, u"told");
         if (user.LogIn() && second.LogIn()) user.AwaitEvent("OnDisConnected");
     },
     {"0 conflict: Replaced by new connection", "0 conflict: Replaced by new connection", "0 conflict"}},
    // jabberd2 says nothing.
    {"a server that is shut down",
     [](User& user, RealServer& server) {
         if (user.LogIn()) server.ShutDown();
     },
     {"0 system-shutdown", "0 system-shutdown: Received SIGTERM", nullptr}},
};

Lines Failures(const Lines& events) {
    Lines failures;
    std::copy_if(events.begin(), events.end(), std::back_inserter(failures), [](const std::string& event) {
        return event.starts_with("OnError") || event.starts_with("OnSocketError") ||
               event == "OnDisConnected";
    });
    return failures;
}

TEST_P(Modern, TellsWhatWentWrongAndThenOfTheEnd) {
    User first(Server(), u"told");
    ASSERT_TRUE(first.Join());
    first->Disconnect();
    for (const Failure& failure : kFailures) {
        SCOPED_TRACE(failure.what);
        Server().AwaitLogouts();
        User user(Server(), u"told");
        failure.provoke(user, Server());
        EXPECT_TRUE(user.AwaitEvent("OnDisConnected"));
        const char* reason = failure.told[static_cast<int>(GetParam())];
        Lines told;
        if (reason) told.push_back(std::string("OnError localhost ") + reason);
        told.emplace_back("OnDisConnected");
        EXPECT_EQ(Failures(user.Events().lines), told);
        EXPECT_FALSE(user->IsConnected());
    }
}

TEST_P(Modern, CarriesEveryScriptThereAndBack) {
    User ann(Server(), u"script.ann");
    // ejabberd takes no emoji in these two, Prosody none in a resource.
    User bob(Server(), u"script.bob", GetParam() == ServerKind::jabberd2 ? kScripts : kLetters);
    bob->Password(GetParam() == ServerKind::ejabberd ? kLetters : kScripts);
    ASSERT_TRUE(ann.Join() && bob.Join());

    auto contact = ann->CreateRosterItem();
    contact->JID(bob.jid);
    contact->NickName(kScripts);
    contact->AddGroup(kScripts);
    contact->Add();
    ASSERT_TRUE(ann.Await([&] { return ann.Contact(bob) != nullptr; }));
    EXPECT_EQ(ann.Contact(bob)->NickName(), kScripts);
    EXPECT_TRUE(ann.Contact(bob)->inGroup(kScripts));

    bob->CreateMessage(ann.FullJid(), MSG_Chat, kScripts, kScripts)->SendMessage();
    ASSERT_TRUE(ann.Sees("OnMessage " + Utf8FromText(kScripts)));
    const auto message = ann.log->messages.back();
    EXPECT_EQ(message->Subject(), kScripts);
    EXPECT_EQ(message->FromJid(), bob.FullJid());

    ann->CreateMessage(message->FromJid(), MSG_Chat, kScripts, u"")->SendMessage();
    EXPECT_TRUE(bob.Sees("OnMessage " + Utf8FromText(kScripts)));

    ann->SendPresence(bob.jid, KV_Subscribe, u"");
    ASSERT_TRUE(bob.Sees("OnSubscriptionRequest script.ann@localhost"));
    bob->SendPresence(ann.jid, KV_Subscribe_Accept, u"");
    bob->Status(kScripts);
    bob->SendMyPresence();
    EXPECT_TRUE(ann.Await([&] {
        std::int32_t index = ann->FindPresence(bob.jid, bob->Resource(), false);
        return index > 0 && ann->Presence().Item(index)->Status() == kScripts;
    }));

    auto card = std::make_shared<cVcard>();
    card->FullName(kScripts);
    bob->UpdateVcard(card);
    ASSERT_TRUE(bob.AwaitEvent("OnIQResult"));
    ann->SendXML(Concat({u"<iq type='get' id='c' to='", bob.jid, u"'><vCard xmlns='vcard-temp'/></iq>"}));
    ASSERT_TRUE(ann.Sees("OnVCardResult script.bob@localhost"));
    EXPECT_EQ(ann.log->vcard->FullName(), kScripts);
}

// Prosody and jabberd2 send the answer in one piece with the end of the stream.
TEST_P(Modern, ConfirmsTheRemovalOfAnAccount) {
    User rosa(Server(), u"removed.rosa");
    ASSERT_TRUE(rosa.Join());
    rosa->RemoveAccount();
    EXPECT_TRUE(rosa.AwaitEvent("OnAccountRemoved"));
}

QUORIX_ON_EVERY_SERVER(Modern);

}  // namespace
}  // namespace quorix::real
