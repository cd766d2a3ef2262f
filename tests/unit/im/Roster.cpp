#include "quorix/im/Roster.h"

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class RosterTest : public LoggedIn {
protected:
    RosterTable& roster = session->Roster();

    // What a push of these items raises.
    Lines Push(const std::string& items, const std::string& type = "set") {
        return Raised("<iq type='" + type + "'><query xmlns='jabber:iq:roster'>" + items + "</query></iq>");
    }
    std::shared_ptr<cRosterItem> Contact(StringView jid) { return roster.Item(roster.FindRosterItem(jid)); }
    std::string GroupsOf(StringView jid) {
        std::string groups;
        for (const String& group : Contact(jid)->Groups()) groups += Utf8FromText(group) + ";";
        return groups;
    }
};

TEST_F(RosterTest, RequestsHoldTheContactAndItsGroups) {
    session->FetchRoster();
    EXPECT_EQ(Heard(), "<iq id='doroster_1' type='get'><query xmlns='jabber:iq:roster'/></iq>");
    auto item = session->CreateRosterItem();
    item->JID(u"a@b");
    item->NickName(u"O'N & \u00e9");
    for (StringView group : {u"b", u"A<", u"c"}) item->AddGroup(group);
    EXPECT_EQ(ErrorOf([&] { item->AddGroup(u"c"); }), ERR_KeyInUse);
    item->RemoveGroup(u"b");
    item->Subscription(KV_Remove);
    auto request = [](const std::string& id, const std::string& subscription) {
        return "<iq id='" + id +
               "' type='set'><query xmlns='jabber:iq:roster'><item jid='a@b' "
               "name='O&apos;N &amp; é'" +
               subscription + "><group>A&lt;</group><group>c</group></item></query></iq>";
    };
    item->Add();
    EXPECT_EQ(Heard(), request("KV_2", ""));
    item->Update();
    EXPECT_EQ(Heard(), request("KV_3", " subscription='remove' "));
    EXPECT_EQ(roster.Count(), 0);
    session.reset();
    EXPECT_EQ(ErrorOf([&] { item->Update(); }), ERR_ObjectNotSet);
}

TEST_F(RosterTest, AResultFillsTheTable) {
    EXPECT_EQ(Push("<item jid='Ann@B' name='Éva &amp;amp; co' subscription='both' ask='subscribe'>"
                   "<group>é</group><other>x</other><group/></item>"
                   "<item jid='C@d'/><item jid='e@f' name='' subscription='nonsense'/>",
                   "result"),
              (Lines{"OnRosterBegin", "OnRosterItem Ann@B 3", "OnRosterItem C@d 0", "OnRosterItem e@f 0",
                     "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(Contact(u"Ann@B")->NickName(), u"\u00c9va & co");
    EXPECT_EQ(Contact(u"Ann@B")->Ask(), u"subscribe");
    EXPECT_EQ(GroupsOf(u"Ann@B"), "é;;") << "a new contact keeps even an empty group";
    EXPECT_EQ(Contact(u"C@d")->NickName(), u"c@d") << "for want of a name";
    EXPECT_EQ(Contact(u"e@f")->NickName(), u"");
    Contact(u"C@d")->Add();
    EXPECT_NE(Heard(), "") << "contacts of the table have their session";
}

TEST_F(RosterTest, APushChangesAContactInPlace) {
    Push("<item jid='a@b' name='Ann' subscription='none' ask='subscribe'><group>x</group></item>");
    auto item = Contact(u"a@b");
    Push("<item jid='a@b' name='Other' subscription='both'><group>y</group><group/><group>z</group></item>");
    EXPECT_EQ(roster.Count(), 1);
    EXPECT_EQ(item->Subscription(), KV_Both);
    EXPECT_EQ(item->NickName(), u"Ann") << "a contact that stays keeps its name";
    EXPECT_EQ(item->Ask(), u"subscribe");
    EXPECT_EQ(GroupsOf(u"a@b"), "y;z;");
    Push("<item jid='a@b' ask='' subscription='to'/>");
    EXPECT_EQ(item->Ask(), u"");
    EXPECT_EQ(item->Subscription(), KV_To);
    EXPECT_EQ(GroupsOf(u"a@b"), "y;z;") << "without children the groups stay";
    Push("<item jid='a@b' subscription='from'><other/></item>");
    EXPECT_EQ(GroupsOf(u"a@b"), "") << "any child replaces them";
    EXPECT_EQ(item->Subscription(), KV_From);
}

TEST_F(RosterTest, ARemovalTakesTheContactOutAndIsReported) {
    Push("<item jid='a@b' name='Ann' subscription='both'/><item jid='c@d'/>");
    auto item = Contact(u"a@b");
    EXPECT_EQ(Push("<item jid='a@b' name='Gone' subscription='remove'/>"),
              (Lines{"OnRosterBegin", "OnRosterItem a@b 4", "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(item->NickName(), u"Gone");
    EXPECT_EQ(roster.FindRosterItem(u"a@b"), 0);
    EXPECT_EQ(roster.FindRosterItem(u"c@d"), 1);
    Push("<item jid='a@b' subscription='remove'/>");
    EXPECT_EQ(roster.FindRosterItem(u"a@b"), 2) << "a removal of a stranger is kept as a contact";
}

TEST_F(RosterTest, EachItemComesWithItsElementAndThePrimaryPresence) {
    Say("<presence from='é@b/low'><priority>1</priority></presence>"
        "<presence from='é@b/high'><priority>2</priority></presence>");
    session->FindPresence(u"\u00e9@b", u"low", true);
    Push("<item jid='é@B/x' name='n'/>");
    EXPECT_EQ(events->rosterPresence, session->Presence().Item(2));
    EXPECT_EQ(events->rosterElement->xml(), u"<item jid=\"\u00c3\u00a9@B/x\" name=\"n\"/>");
    EXPECT_EQ(session->FindPresence(u"\u00e9@b", u"", false), 1) << "the cursor stayed";
}

TEST_F(RosterTest, WhatIsNoRosterOrNoItemOfItsOwnIsPassedOver) {
    for (const char* type : {"get", ""}) EXPECT_EQ(Push("<item jid='a@b'/>", type), Lines{"OnIQ"});
    EXPECT_EQ(Push("", "result"), (Lines{"OnRosterBegin", "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(Push("<item jid='a@b'><item jid='no@b'/></item><deep><item jid='c@d'/></deep>"),
              (Lines{"OnRosterBegin", "OnRosterItem a@b 0", "OnRosterItem c@d 0", "OnRosterEnd", "OnIQ"}));
}

TEST_F(RosterTest, AGroupNamedTwiceEndsItsStanzaAndNothingElse) {
    EXPECT_EQ(
        Push(
            "<item jid='a@b'/><item jid='bad@b'><group>x</group><group>x</group></item><item jid='lost@b'/>"),
        (Lines{"OnRosterBegin", "OnRosterItem a@b 0", "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(Push("<item jid='a@b'><group>x</group><group>x</group></item>"),
              (Lines{"OnRosterBegin", "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(Push("<item jid='next@b'/>"),
              (Lines{"OnRosterBegin", "OnRosterItem next@b 0", "OnRosterEnd", "OnIQ"}));
    EXPECT_EQ(roster.Count(), 2);
}

TEST_F(RosterTest, AContactLeavesTheGroupsOfOthersAlone) {
    Push("<item jid='a@b'><group>x</group></item><item jid='c@d'><group>x</group></item>");
    Contact(u"a@b")->AddGroup(u"y");
    Contact(u"c@d")->RemoveGroup(u"x");
    Push("<item jid='e@f'><group>x</group></item>");
    EXPECT_EQ(GroupsOf(u"a@b") + "|" + GroupsOf(u"c@d") + "|" + GroupsOf(u"e@f"), "x;y;||x;");
}

TEST_F(RosterTest, ThousandsOfGroupsAndItemsWithoutAnAddressAreTaken) {
    std::string groups;
    for (int i = 0; i < 10000; ++i) groups += "<group>" + std::to_string(i) + "</group>";
    for (int round = 0; round < 2; ++round) Push("<item>" + groups + "</item>");
    ASSERT_EQ(roster.Count(), 1);
    EXPECT_EQ(Contact(u"")->Groups().Count(), 10000);
}

TEST_F(RosterTest, AHandlerMayChangeTheTableItIsToldOf) {
    events->hook = [&](const std::string& event) {
        if (event == "OnRosterItem") roster.Clear();
    };
    EXPECT_EQ(Push("<item jid='a@b'/><item jid='a@b' subscription='remove'/><item jid='c@d'/>").size(), 6U);
    EXPECT_EQ(roster.Count(), 0);
}

TEST_F(RosterTest, FindingIsExactAndFollowsTheRecords) {
    Push("<item jid='a@b'/><item jid='A@b'/><item jid='c@d'/>");
    EXPECT_EQ(roster.FindRosterItem(u"A@b"), 2);
    EXPECT_EQ(roster.FindRosterItem(u"A@B"), 0);
    EXPECT_TRUE(roster.Contains(u"A@B"));

    roster.Item(3)->JID(u"a@b");
    EXPECT_EQ(roster.FindRosterItem(u"c@d"), 0);
    EXPECT_FALSE(roster.Contains(u"c@d"));
    roster.Remove(1);
    EXPECT_EQ(roster.FindRosterItem(u"a@b"), 2);
    roster.Item(2)->JID(u"new@b");
    Push("<item jid='new@b' subscription='remove'/>");
    EXPECT_EQ(roster.Count(), 1);
}

TEST_F(RosterTest, APositionBeyond32767IsAnOverflowAndTheTableGoesOn) {
    for (int i = 1; i <= 32768; ++i) {
        auto item = std::make_shared<cRosterItem>();
        item->JID(Concat({u"c", ToString(i)}));
        roster.Add(item);
    }
    EXPECT_EQ(roster.FindRosterItem(u"c32767"), 32767);
    EXPECT_EQ(ErrorOf([&] { roster.FindRosterItem(u"c32768"); }), ERR_Overflow);
    Push("<item jid='c32768' subscription='remove'/><item jid='c1' subscription='remove'/>");
    EXPECT_EQ(roster.Count(), 32766);
}

TEST_F(RosterTest, ContactsInsideAMessageAreReportedAsTheyCameAndNotKept) {
    EXPECT_EQ(Raised("<message from='A@b/c'><body>look</body><x xmlns='jabber:x:roster'>"
                     "<item jid='x@y' name='é'><group>g</group></item><item/></x></message>"),
              (Lines{"OnReceiveRosterItem x@y \xC3\x83\xC2\xA9 A@b/c", "OnReceiveRosterItem   A@b/c"}));
    EXPECT_EQ(roster.Count(), 0);
    auto item = events->received.front();
    EXPECT_EQ(ErrorOf([&] { item->Add(); }), ERR_ObjectNotSet);
}

}  // namespace
}  // namespace quorix
