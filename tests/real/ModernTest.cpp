// The modern mode on servers that people run: what goes wrong is told, and text of every script arrives.

#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"
#include "tests/real/StagedEnvironment.h"

namespace quorix::real {
namespace {

constexpr StringView kScripts = u"é 😀 鷹 한국어";
constexpr StringView kLetters = u"é鷹한국어";

String Repeated(StringView text, std::size_t units) {
    String result;
    while (result.size() < units) result += text;
    return result;
}

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
    // As this session knows it.
    String StatusOf(StringView bareJid, StringView resource) const {
        const std::int32_t index = session().FindPresence(bareJid, resource, false);
        return index > 0 ? session().Presence().Item(index)->Status() : String();
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
        Server().Thaw();
        const char* reason = failure.told[static_cast<int>(GetParam())];
        Lines told;
        if (reason) told.push_back(std::string("OnError localhost ") + reason);
        told.emplace_back("OnDisConnected");
        EXPECT_EQ(Failures(user.Events().lines), told);
        EXPECT_FALSE(user->IsConnected());
    }
}

// A link that is cut without a word, as far as the session can see.
TEST_P(Modern, NoticesAServerThatFellSilentAndComesBackToIt) {
    StagedEnvironment environment;
    environment.haste = 64;  // KeepAliveInterval is a second now
    User user(Server(), u"silent");
    user->KeepAliveInterval(1);
    user->LoginTimeout(0);
    user->ReconnectInterval(64);
    ASSERT_TRUE(user.Join());
    user->Reconnect(true);
    user.Events().Take();
    EXPECT_FALSE(RunUntil([&] { return user.Events().Count("OnDisConnected") > 0; }, 3)) << "it answers";
    Server().Freeze();
    EXPECT_TRUE(user.AwaitEvent("OnDisConnected"));
    Server().Thaw();
    EXPECT_EQ(Failures(user.Events().lines),
              (Lines{"OnError localhost 408 The server does not answer", "OnDisConnected"}));
    ASSERT_TRUE(user.AwaitEvent("OnAuthorized"));
    user->SendMyPresence();
    user->CreateMessage(user.FullJid(), MSG_Chat, u"back", u"")->SendMessage();
    EXPECT_TRUE(user.Sees("OnMessage back"));
}

TEST_P(Modern, ReachesItsServerByIp6) {
    if (!HasIp6() || GetParam() == ServerKind::jabberd2) return;
    User user(Server(), u"route");
    user->ConnectHost(u"::1");
    EXPECT_TRUE(user.Join());
}

// Reads of one byte each.
TEST_P(Modern, ReadsItsStreamInWhateverPieces) {
    StagedEnvironment environment;
    environment.readLimit = 1;
    User user(Server(), u"pieces");
    ASSERT_TRUE(user.Join());
    user->CreateMessage(user.FullJid(), MSG_Chat, kScripts, u"")->SendMessage();
    EXPECT_TRUE(user.Sees("OnMessage " + Utf8FromText(kScripts)));
    user->RemoveAccount();
    EXPECT_TRUE(user.AwaitEvent("OnAccountRemoved"));
}

// Somebody on another library, logged in with bob's account.
class OtherClient {
public:
    OtherClient(const RealServer& server, const User& bob, StringView status)
        : program_({{QUORIX_OTHER_CLIENT, Utf8FromText(Concat({bob.jid, u"/other"})),
                     std::to_string(server.Port())},
                    {},
                    folder_.Path(),
                    folder_.Path() / "values",
                    "",
                    folder_.Write("input", Utf8FromText(Concat({bob->Password(), u"\n", status, u"\n"})))}) {}

    bool HasRead(StringView value) const {
        return folder_.Read("values").find("\n" + Utf8FromText(value) + "\n") != std::string::npos;
    }

private:
    testkit::TemporaryFolder folder_;
    Process program_;
};

struct Texts {
    StringView name;  // of the people
    String text;
    String card;
    String resource;
    String password;
};

class Scripts : public Modern {
protected:
    // ejabberd takes no emoji in the last two, Prosody none in a resource.
    Texts Short() const {
        return {u"script", String(kScripts), String(kScripts),
                String(GetParam() == ServerKind::jabberd2 ? kScripts : kLetters),
                String(GetParam() == ServerKind::ejabberd ? kLetters : kScripts)};
    }
    // A resource has 1023 bytes at most, a password too; on jabberd2 256, and a line of a card 16,384.
    Texts Long() const {
        const std::size_t most = GetParam() == ServerKind::jabberd2 ? 7000 : 100000;
        return {u"long", Repeated(kScripts, 100000), Repeated(kScripts, most), Repeated(kLetters, 300),
                Repeated(Short().password, 100)};
    }
    void Carry(const Texts& texts);
};

void Scripts::Carry(const Texts& texts) {
    auto as = [&](StringView place) { return Concat({texts.text, place}); };
    auto heard = [](const String& body) { return "OnMessage " + Utf8FromText(body); };
    User ann(Server(), Concat({texts.name, u".ann"}));
    User bob(Server(), Concat({texts.name, u".bob"}), texts.resource);
    bob->Password(texts.password);
    ASSERT_TRUE(ann.Join() && bob.Join());

    auto contact = bob->CreateRosterItem();
    contact->JID(ann.jid);
    contact->NickName(as(u"name"));
    contact->AddGroup(as(u"group"));
    contact->Add();
    ASSERT_TRUE(bob.Await([&] { return bob.Contact(ann) != nullptr; }));
    EXPECT_EQ(bob.Contact(ann)->NickName(), as(u"name"));
    EXPECT_TRUE(bob.Contact(ann)->inGroup(as(u"group")));

    bob->CreateMessage(ann.FullJid(), MSG_Chat, as(u"body"), as(u"subject"))->SendMessage();
    ASSERT_TRUE(ann.Sees(heard(as(u"body"))));
    EXPECT_EQ(ann.log->messages.back()->Subject(), as(u"subject"));
    EXPECT_EQ(ann.log->messages.back()->FromJid(), bob.FullJid());
    ann->CreateMessage(bob.FullJid(), MSG_Chat, as(u"answer"), u"")->SendMessage();
    EXPECT_TRUE(bob.Sees(heard(as(u"answer"))));

    ann->SendPresence(bob.jid, KV_Subscribe, u"");
    ASSERT_TRUE(bob.Sees("OnSubscriptionRequest " + Utf8FromText(ann.jid)));
    bob->SendPresence(ann.jid, KV_Subscribe_Accept, u"");
    bob->Status(as(u"status"));
    bob->SendMyPresence();
    EXPECT_TRUE(ann.Await([&] { return ann.StatusOf(bob.jid, texts.resource) == as(u"status"); }));

    auto card = std::make_shared<cVcard>();
    card->FullName(texts.card);
    bob->UpdateVcard(card);
    ASSERT_TRUE(bob.Settle());
    ann->SendXML(Concat({u"<iq type='get' id='c' to='", bob.jid, u"'><vCard xmlns='vcard-temp'/></iq>"}));
    ASSERT_TRUE(ann.Sees("OnVCardResult " + Utf8FromText(bob.jid)));
    EXPECT_EQ(ann.log->vcard->FullName(), texts.card);

    if (GetParam() == ServerKind::ejabberd) {  // the only one that still lets anybody open a room like this
        auto room = std::make_shared<cGroupChat>();
        room->JID(Concat({texts.name, u"@conference.localhost"}));
        room->NickName(texts.resource);
        bob->SendGroupChatRequest(room, true);
        bob->CreateMessage(room->JID(), MSG_GroupChat, as(u"room"), u"")->SendMessage();
        ASSERT_TRUE(bob.Sees(heard(as(u"room"))));
        EXPECT_EQ(bob.log->messages.back()->FromJid(), Concat({room->JID(), u"/", room->NickName()}));
    }

    const OtherClient other(Server(), bob, as(u"other status"));
    ASSERT_TRUE(ann.Await([&] { return ann.StatusOf(bob.jid, u"other") == as(u"other status"); }));
    ann->CreateMessage(Concat({bob.jid, u"/other"}), MSG_Chat, as(u"echo"), as(u"about"))->SendMessage();
    ASSERT_TRUE(ann.Sees(heard(as(u"echo"))));
    EXPECT_EQ(ann.log->messages.back()->Subject(), as(u"about"));
    EXPECT_TRUE(RunUntil([&] { return other.HasRead(texts.card); }));
    for (StringView place : {u"name", u"group", u"status", u"echo", u"about"}) {
        EXPECT_TRUE(RunUntil([&] { return other.HasRead(as(place)); })) << Utf8FromText(place);
    }
}

TEST_P(Scripts, ComeThereAndBack) { Carry(Short()); }
TEST_P(Scripts, ComeThereAndBackAtAnyLength) { Carry(Long()); }

QUORIX_ON_EVERY_SERVER(Modern);
QUORIX_ON_EVERY_SERVER(Scripts);

}  // namespace
}  // namespace quorix::real
