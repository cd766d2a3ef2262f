#include "quorix/im/Roster.h"

#include <gtest/gtest.h>

#include "tests/unit/ErrorOf.h"
#include "tests/unit/im/FakeSession.h"

namespace quorix::test {
namespace {

Lines GroupsOf(const cRosterItem& item) {
    Lines groups;
    for (const String& group : item.Groups()) groups.push_back(Show(group));
    return groups;
}

class RosterTest : public ::testing::Test {
protected:
    std::shared_ptr<FakeSession> session = FakeSession::Make();

    // A push of these items; they may hold wire text.
    void Push(StringView items, StringView type = u"set") {
        session->Arrive(
            Concat({u"<iq type='", type, u"'><query xmlns='jabber:iq:roster'>", items, u"</query></iq>"}));
    }
    std::shared_ptr<cRosterItem> Contact(StringView jid) {
        return session->roster.Item(session->roster.FindRosterItem(jid));
    }
};

TEST_F(RosterTest, FetchingAlwaysHasTheSameId) {
    FetchRoster(*session);
    FetchRoster(*session);
    const std::string request = "<iq id='doroster_1' type='get'><query xmlns='jabber:iq:roster'/></iq>";
    EXPECT_EQ(session->TakeSent(), (Lines{request, request}));
}

TEST_F(RosterTest, RequestsHoldTheContactAndItsGroups) {
    cRosterItem item;
    item.SetSession(session);
    item.JID(u"a@b");
    item.NickName(u"O'N & \u00e9");
    item.AddGroup(u"A<");
    item.AddGroup(u"B");
    item.Subscription(KV_Remove);
    item.Add();
    item.Update();
    item.Subscription(static_cast<eSubscriptionType>(5));
    item.RemoveAllGroups();
    item.Update();
    const std::string name = "name='O&apos;N &amp; \xC3\x83\xC2\xA9'";
    const std::string groups = "<group>A&lt;</group><group>B</group>";
    auto request = [](const std::string& id, const std::string& content) {
        return "<iq id='" + id + "' type='set'><query xmlns='jabber:iq:roster'>" + content +
               "</item></query></iq>";
    };
    EXPECT_EQ(session->TakeSent(),
              (Lines{request("KV_1", "<item jid='a@b' " + name + ">" + groups),
                     request("KV_2", "<item jid='a@b' " + name + " subscription='remove' >" + groups),
                     request("KV_3", "<item jid='a@b' " + name + " subscription='' >")}));
    EXPECT_EQ(session->roster.Count(), 0);
}

TEST_F(RosterTest, AContactWithoutSessionIsNotSent) {
    cRosterItem item;
    EXPECT_EQ(ErrorOf([&] { item.Add(); }), ERR_ObjectNotSet);
    item.SetSession(session);
    session.reset();
    EXPECT_EQ(ErrorOf([&] { item.Update(); }), ERR_ObjectNotSet);
}

TEST_F(RosterTest, GroupsAreASetInOrder) {
    cRosterItem item;
    for (StringView group : {u"b", u"a", u"c"}) item.AddGroup(group);
    EXPECT_EQ(ErrorOf([&] { item.AddGroup(u"a"); }), ERR_KeyInUse);
    EXPECT_EQ(ErrorOf([&] { item.RemoveGroup(u"A"); }), ERR_InvalidCall);
    EXPECT_TRUE(item.inGroup(u"a"));
    item.RemoveGroup(u"a");
    EXPECT_FALSE(item.inGroup(u"a"));
    EXPECT_EQ(GroupsOf(item), (Lines{"b", "c"}));
    item.AddGroup(u"a");
    EXPECT_EQ(GroupsOf(item), (Lines{"b", "c", "a"}));
}

TEST_F(RosterTest, AResultFillsTheTable) {
    Push(
        u"<item jid='Ann@B' name='\u00c3\u0089va &amp;amp; co' subscription='both' ask='subscribe'>"
        u"<group>\u00c3\u00a9</group><other>x</other><group/></item>"
        u"<item jid='C@d'/><item jid='e@f' name='' subscription='nonsense'/>",
        u"result");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterItem Ann@B 3", "OnRosterItem C@d 0",
                                            "OnRosterItem e@f 0", "OnRosterEnd"}));
    EXPECT_EQ(Contact(u"Ann@B")->NickName(), u"\u00c9va & co");
    EXPECT_EQ(Contact(u"Ann@B")->Ask(), u"subscribe");
    EXPECT_EQ(GroupsOf(*Contact(u"Ann@B")), (Lines{"\xC3\xA9", ""}))
        << "a new contact keeps even an empty group";
    EXPECT_EQ(Contact(u"C@d")->NickName(), u"c@d") << "for want of a name";
    EXPECT_EQ(Contact(u"e@f")->NickName(), u"");
    Contact(u"C@d")->Add();
    EXPECT_EQ(session->sent.size(), 1u) << "contacts of the table have their session";
}

TEST_F(RosterTest, APushChangesAContactInPlace) {
    Push(u"<item jid='a@b' name='Ann' subscription='none' ask='subscribe'><group>x</group></item>");
    auto item = Contact(u"a@b");
    Push(u"<item jid='a@b' name='Other' subscription='both'><group>y</group><group/><group>z</group></item>");
    EXPECT_EQ(session->roster.Count(), 1);
    EXPECT_EQ(item->Subscription(), KV_Both);
    EXPECT_EQ(item->NickName(), u"Ann") << "a contact that stays keeps its name";
    EXPECT_EQ(item->Ask(), u"subscribe");
    EXPECT_EQ(GroupsOf(*item), (Lines{"y", "z"}));

    Push(u"<item jid='a@b' ask='' subscription='to'/>");
    EXPECT_EQ(item->Ask(), u"");
    EXPECT_EQ(item->Subscription(), KV_To);
    EXPECT_EQ(GroupsOf(*item), (Lines{"y", "z"})) << "without children the groups stay";

    Push(u"<item jid='a@b' subscription='from'><other/></item>");
    EXPECT_EQ(GroupsOf(*item), Lines{}) << "any child replaces them";
    EXPECT_EQ(item->Subscription(), KV_From);
}

TEST_F(RosterTest, ARemovalTakesTheContactOutAndIsReported) {
    Push(u"<item jid='a@b' name='Ann' subscription='both'/><item jid='c@d'/>");
    auto item = Contact(u"a@b");
    session->TakeEvents();
    Push(u"<item jid='a@b' name='Gone' subscription='remove'/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterItem a@b 4", "OnRosterEnd"}));
    EXPECT_EQ(item->NickName(), u"Gone");
    EXPECT_EQ(session->roster.FindRosterItem(u"a@b"), 0);
    EXPECT_EQ(session->roster.FindRosterItem(u"c@d"), 1);

    Push(u"<item jid='a@b' subscription='remove'/>");
    EXPECT_EQ(session->roster.FindRosterItem(u"a@b"), 2) << "a removal of a stranger is kept as a contact";
}

TEST_F(RosterTest, EachItemComesWithItsElementAndThePrimaryPresence) {
    session->Arrive(u"<presence from='\u00c3\u00a9@b/low'><priority>1</priority></presence>");
    session->Arrive(u"<presence from='\u00c3\u00a9@b/high'><priority>2</priority></presence>");
    session->presences.FindPresence(u"\u00e9@b", u"low", true);
    Push(u"<item jid='\u00c3\u00a9@B/x' name='n'/>");
    EXPECT_EQ(session->log.lastPrimary, session->presences.Item(2));
    EXPECT_EQ(session->log.lastNode->xml(), u"<item jid=\"\u00c3\u00a9@B/x\" name=\"n\"/>");
    EXPECT_EQ(session->presences.FindPresence(u"\u00e9@b", u"", false), 1) << "the cursor stayed";

    session->presences.Item(1)->Priority(-1);
    session->presences.Remove(2);
    Push(u"<item jid='\u00c3\u00a9@B/x'/>");
    EXPECT_EQ(session->log.lastPrimary, nullptr);
}

TEST_F(RosterTest, OtherTypesAreNoRoster) {
    for (StringView type : {u"get", u"error", u""}) Push(u"<item jid='a@b'/>", type);
    EXPECT_EQ(session->TakeEvents(), Lines{});
    EXPECT_EQ(session->roster.Count(), 0);
    Push(u"", u"result");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterEnd"}));
}

TEST_F(RosterTest, AGroupNamedTwiceEndsItsStanzaAndNothingElse) {
    Push(u"<item jid='a@b'/><item jid='bad@b'><group>x</group><group>x</group></item><item jid='lost@b'/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterItem a@b 0", "OnRosterEnd"}));
    Push(u"<item jid='a@b'><group>x</group><group>x</group></item>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterEnd"}));
    Push(u"<item jid='next@b'/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnRosterBegin", "OnRosterItem next@b 0", "OnRosterEnd"}));
    EXPECT_EQ(session->roster.Count(), 2);
}

TEST_F(RosterTest, ThousandsOfGroupsAndItemsWithoutAnAddressAreTaken) {
    String groups;
    for (int i = 0; i < 10000; ++i) groups += Concat({u"<group>", ToString(i), u"</group>"});
    for (int round = 0; round < 2; ++round) Push(Concat({u"<item>", groups, u"</item>"}));
    ASSERT_EQ(session->roster.Count(), 1);
    EXPECT_EQ(Contact(u"")->Groups().Count(), 10000);
}

TEST_F(RosterTest, AnItemInsideAnItemIsPartOfIt) {
    Push(u"<item jid='a@b'><item jid='no@b'/></item><deep><item jid='c@d'/></deep>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnRosterBegin", "OnRosterItem a@b 0", "OnRosterItem c@d 0", "OnRosterEnd"}));
}

TEST_F(RosterTest, AHandlerMayChangeTheTableItIsToldOf) {
    session->log.onRosterItem = [&] { session->roster.Clear(); };
    Push(u"<item jid='a@b'/><item jid='a@b' subscription='remove'/><item jid='c@d'/>");
    EXPECT_EQ(session->log.lines.size(), 5u);
    EXPECT_EQ(session->roster.Count(), 0);
}

TEST_F(RosterTest, FindingIsExactAndFollowsTheRecords) {
    Push(u"<item jid='a@b'/><item jid='A@b'/><item jid='c@d'/>");
    EXPECT_EQ(session->roster.FindRosterItem(u"A@b"), 2);
    EXPECT_EQ(session->roster.FindRosterItem(u"A@B"), 0);
    EXPECT_TRUE(session->roster.Contains(u"A@B"));

    session->roster.Item(3)->JID(u"a@b");
    EXPECT_EQ(session->roster.FindRosterItem(u"c@d"), 0);
    EXPECT_FALSE(session->roster.Contains(u"c@d"));
    session->roster.Remove(1);
    EXPECT_EQ(session->roster.FindRosterItem(u"a@b"), 2);
    session->roster.Item(2)->JID(u"new@b");
    Push(u"<item jid='new@b' subscription='remove'/>");
    EXPECT_EQ(session->roster.Count(), 1);
}

TEST_F(RosterTest, APositionBeyond32767IsAnOverflowAndTheTableGoesOn) {
    for (int i = 1; i <= 32768; ++i) {
        auto item = std::make_shared<cRosterItem>();
        item->JID(Concat({u"c", ToString(i)}));
        session->roster.Add(item);
    }
    EXPECT_EQ(session->roster.FindRosterItem(u"c32767"), 32767);
    EXPECT_EQ(ErrorOf([&] { session->roster.FindRosterItem(u"c32768"); }), ERR_Overflow);
    EXPECT_EQ(session->roster.FindRosterItem(u"none"), 0);
    Push(u"<item jid='c32768' subscription='remove'/><item jid='c1' subscription='remove'/>");
    EXPECT_EQ(session->roster.Count(), 32766);
}

TEST_F(RosterTest, ContactsInsideAMessageAreReportedAsTheyCameAndNotKept) {
    session->Arrive(
        u"<message from='A@b/c'><body>look</body><x xmlns='jabber:x:roster'>"
        u"<item jid='x@y' name='\u00c3\u00a9'><group>g</group></item><item/></x></message>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnReceiveRosterItem x@y \xC3\x83\xC2\xA9 A@b/c", "OnReceiveRosterItem   A@b/c"}));
    EXPECT_EQ(session->roster.Count(), 0);
    auto item = session->log.received.front();
    EXPECT_EQ(ErrorOf([&] { item->Add(); }), ERR_ObjectNotSet);
    item->SetSession(session);
    item->Add();
    EXPECT_EQ(session->sent.size(), 1u);
}

}  // namespace
}  // namespace quorix::test
