// The services on servers that people run. None of them answers browsing or conference queries any more.
#include <gmock/gmock.h>

#include "tests/real/Person.h"

namespace quorix::real {
namespace {

using ::testing::Contains;

class User : public Person {
public:
    User(const RealServer& server, StringView name) : Person(server.Port(), name, u"home") {}

    bool Told(const std::string& start) const {
        return Await([&] { return HasSeen(start); });
    }
    bool Hears(const std::string& part) const {
        return Await([&] { return Holds(Events().incoming, part); });
    }
};

class Services : public RealServerTest {
protected:
    // Takes the name when it is.
    bool IsFree(StringView name) const {
        const User user(Server(), name);
        user->Connect(true);
        auto created = [&] { return user.Events().Count("OnNewUserCreated") > 0; };
        user.Await([&] { return created() || user.Events().Count("OnIQError") > 0; });
        return created();
    }
};

TEST_P(Services, CreateChangeAndRemoveAnAccount) {
    User user(Server(), u"rosa");
    ASSERT_TRUE(user.Join());
    user->ChangePassword(u"another");
    ASSERT_TRUE(user.AwaitEvent("OnChangedPassword"));
    user->Disconnect();
    user->Password(u"another");
    ASSERT_TRUE(user.Return());
    user->RemoveAccount();
    // The others send the result in one chunk with the end of the stream, and so it is lost.
    if (GetParam() == ServerKind::ejabberd) {
        EXPECT_TRUE(user.AwaitEvent("OnAccountRemoved"));
    }
    EXPECT_TRUE(user.Await([&] { return IsFree(u"rosa"); }));
}

TEST_P(Services, TellVersionTimeAndLastActivity) {
    User user(Server(), u"curious");
    ASSERT_TRUE(user.Join());
    user->SendVersionRequest(u"localhost");
    EXPECT_TRUE(user.Told("OnVersionResult localhost "));
    // Prosody knows it of accounts, the others of themselves; and it alone tells the time in the old way.
    bool isProsody = GetParam() == ServerKind::prosody;
    user->SendLastSeenRequest(isProsody ? user.jid : String(u"localhost"));
    EXPECT_TRUE(user.Told("OnLastSeenResult iq "));
    std::size_t errors = user.Events().Count("OnIQError");
    user->SendTimeRequest(u"localhost");
    EXPECT_TRUE(isProsody ? user.Told("OnTimeResult localhost ") : user.AwaitEvent("OnIQError", errors + 1));
}

TEST_P(Services, KeepPrivateData) {
    User user(Server(), u"keeper");
    ASSERT_TRUE(user.Join());
    user->StorePrivateData(u"notes:mine", u"<text>remember</text>");
    ASSERT_TRUE(user.AwaitEvent("OnIQResult"));
    user->SendXML(
        u"<iq type='get' id='p'><query xmlns='jabber:iq:private'><notes xmlns='notes:mine'/></query></iq>");
    EXPECT_TRUE(user.Hears("<text>remember</text>"));
}

// Only ejabberd has a directory of its users, and still understands the oldest form of entering a room: a
// directed presence and nothing else.
class EjabberdServices : public Services {};

TEST_P(EjabberdServices, FindPublishedPeople) {
    User user(Server(), u"seeker");
    ASSERT_TRUE(user.Join());
    auto card = std::make_shared<cVcard>();
    card->FullName(u"Needle Haystack");
    user->UpdateVcard(card);
    ASSERT_TRUE(user.AwaitEvent("OnIQResult"));

    user->SendXML(u"<iq type='get' id='f' to='vjud.localhost'><query xmlns='jabber:iq:search'/></iq>");
    ASSERT_TRUE(user.Told("OnSearchFields "));
    EXPECT_NE(user->SearchXData()->Title(), u"");
    std::vector<String> vars;
    for (const auto& field : user->SearchXData()->Fields()) vars.push_back(field->Var());
    EXPECT_THAT(vars, Contains(u"fn"));

    user->SendXML(
        u"<iq type='set' id='s' to='vjud.localhost'><query xmlns='jabber:iq:search'><x xmlns='jabber:x:data' "
        u"type='submit'><field var='fn'><value>Needle Haystack</value></field></x></query></iq>");
    ASSERT_TRUE(user.Told("OnSearchResults "));
    EXPECT_EQ(user->Searchresults()->Item(1)->SearchItem(), user.jid);
    EXPECT_EQ(user->SearchFields()->Count(), 0);
}

TEST_P(EjabberdServices, EnterSpeakInAndLeaveARoom) {
    User user(Server(), u"speaker");
    ASSERT_TRUE(user.Join());
    auto room = std::make_shared<cGroupChat>();
    room->JID(u"lobby@conference.localhost");
    room->NickName(u"Me");
    user->SendGroupChatRequest(room, true);
    ASSERT_TRUE(user.Sees("OnPresence lobby@conference.localhost Me 1 0 2"));
    user->CreateMessage(room->JID(), MSG_GroupChat, u"h\u00e9llo", {})->SendMessage();
    EXPECT_TRUE(user.Sees("OnMessage h\u00e9llo"));
    user->SendGroupChatRequest(room, false);
    EXPECT_EQ(user->FindGroupChat(room->JID()), 0);
}

QUORIX_ON_EVERY_SERVER(Services);
INSTANTIATE_TEST_SUITE_P(Real, EjabberdServices, ::testing::Values(ServerKind::ejabberd), NameOfCase);

}  // namespace
}  // namespace quorix::real
