#include <gtest/gtest.h>

#include "quorix/services/Browse.h"
#include "quorix/services/Conference.h"
#include "quorix/services/GroupChats.h"
#include "tests/unit/services/FakeLink.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::tests {
namespace {

std::shared_ptr<cGroupChat> Room(StringView jid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(jid);
    room->NickName(nickname);
    return room;
}

TEST(Rooms, JoiningAndLeavingAreDirectedPresences) {
    FakeLink link;
    GroupChats rooms;
    auto room = Room(u"r@c", u"J\u00f6");
    rooms.SendGroupChatRequest(link, room, true);
    EXPECT_EQ(link.TakeSent(), "<presence to='r@c/J\xc3\x83\xc2\xb6'/>");
    rooms.SendGroupChatRequest(link, room, false);
    EXPECT_EQ(link.TakeSent(), "<presence to='r@c/J\xc3\x83\xc2\xb6'  type='unavailable'/>");
    EXPECT_THROW(rooms.SendGroupChatRequest(link, nullptr, true), AutomationError);
    EXPECT_TRUE(link.sent.empty());
}

TEST(Rooms, AJoinTakesThePlaceOfTheSameRoomInAnyCase) {
    FakeLink link;
    GroupChats rooms;
    rooms.SendGroupChatRequest(link, Room(u"a@c", u"n"), true);
    rooms.SendGroupChatRequest(link, Room(u"b@c", u"n"), true);
    rooms.SendGroupChatRequest(link, Room(u"A@C/x", u"m"), true);
    EXPECT_EQ(rooms.Items().Count(), 2);
    EXPECT_EQ(rooms.FindGroupChat(u"A@C/x"), 1);
    EXPECT_EQ(rooms.FindGroupChat(u"a@c/x"), 0);
    rooms.SendGroupChatRequest(link, Room(u"unknown@c", u"n"), false);
    EXPECT_EQ(rooms.Items().Count(), 2);
    rooms.SendGroupChatRequest(link, Room(u"a@c", u"n"), false);
    EXPECT_EQ(rooms.FindGroupChat(u"b@c"), 1);
}

TEST(Rooms, OnlyTheOwnNicknameInAKnownRoomLeavesIt) {
    FakeLink link;
    GroupChats rooms;
    rooms.SendGroupChatRequest(link, Room(u"a@c", u"me"), true);
    EXPECT_FALSE(rooms.Leave(u"a@c", u"Me"));
    EXPECT_FALSE(rooms.Leave(u"A@c", u"me"));
    EXPECT_EQ(rooms.Items().Count(), 1);
    EXPECT_TRUE(rooms.Leave(u"a@c", u"me"));
    EXPECT_EQ(rooms.Items().Count(), 0);
}

TEST(Rooms, PresenceInARoomAlwaysHasAShowElement) {
    const std::tuple<eShowType, StringView, std::string> cases[] = {
        {KV_Away, u"", "<show>away</show>"},
        {KV_chat, u"", "<show>chat</show>"},
        {KV_DND, u"<", "<show>dnd</show><status><</status>"},
        {KV_ExtendedAway, u"", "<show></show>"},
        {KV_None, u"s", "<show></show><status>s</status>"}};
    FakeLink link;
    for (const auto& [show, status, content] : cases) {
        SendGroupChatPresence(link, u"r@c", show, status);
        EXPECT_EQ(link.TakeSent(), "<presence to='r@c'>" + content + "</presence>");
    }
}

TEST(Rooms, ANewNicknameIsAskedForAndKept) {
    FakeLink link;
    auto room = Room(u"r@c", u"old");
    ChangeGCNickName(link, room, u"new");
    EXPECT_EQ(link.TakeSent(),
              "<iq to= 'r@c' type='set'><query xmlns='jabber:iq:conference'><nick>new</nick></query></iq>");
    EXPECT_EQ(room->NickName(), u"new");
    EXPECT_THROW(ChangeGCNickName(link, nullptr, u"x"), AutomationError);
}

TEST(Rooms, InvitationsAndBrowsesAreWrittenExactly) {
    FakeLink link;
    SendGCInvite10(link, u"a@b", u"r@c");
    EXPECT_EQ(link.TakeSent(),
              "<message id='KV_1' to='a@b'><x xmlns='jabber:x:conference' jid='r@c'/>"
              "<subject>Invite to Groupchat:r@c</subject><body/></message>");
    BrowseChatServer(link, u"\u00e9", u"7");
    EXPECT_EQ(link.TakeSent(),
              "<iq type='get' to='\xc3\x83\xc2\xa9' id='gcsrv_7'><item xmlns='jabber:iq:browse'/></iq>");
    BrowseChatRoom(link, u"r@c", u"7");
    EXPECT_EQ(link.TakeSent(), "<iq type='get' to='r@c' id='gcroom_7'><item xmlns='jabber:iq:browse'/></iq>");
    EXPECT_EQ(link.ids, 1);
}

class RoomReplies : public ::testing::Test {
protected:
    Lines Browse(StringView id, StringView query, StringView type = u"result") {
        HandleBrowse(link,
                     StanzaOf(Concat({u"<iq type='", type, u"' from='c' id='", id, u"'>", query, u"</iq>"})));
        return log->Take();
    }

    std::shared_ptr<ServiceLog> log = std::make_shared<ServiceLog>();
    FakeLink link{log};
};

TEST_F(RoomReplies, AServerListsTheItemsWithANamespace) {
    EXPECT_EQ(Browse(u"gcsrv_1",
                     u"<conference xmlns='jabber:iq:browse'><item jid='no@c'/>"
                     u"<item xmlns='jabber:iq:browse' jid='a@c' name='A' type='public'/>"
                     u"<item xmlns='jabber:iq:browse' jid='b@c' name='B' type='private'/>"
                     u"<user xmlns='jabber:iq:browse' jid='u@c'/></conference>"),
              (Lines{"ChatServerBrowseResult a@c iq", "ChatServerBrowseResult b@c iq"}));
    EXPECT_EQ(log->room->ServerType(), KV_Private);
    EXPECT_EQ(log->room->RoomName(), u"B");
    EXPECT_EQ(log->room->Server(), u"c");
}

TEST_F(RoomReplies, WithoutAnyNamespaceTheItemsWithAnAddressCount) {
    EXPECT_EQ(
        Browse(u"gcsrv_1", u"<conference><item jid='a@c'/><item name='no'/><item jid='b@c'/></conference>"),
        (Lines{"ChatServerBrowseResult a@c iq", "ChatServerBrowseResult b@c iq"}));
}

TEST_F(RoomReplies, AServerWithoutRoomsIsReportedOnce) {
    for (StringView query :
         {u"", u"<item xmlns='jabber:iq:browse'/>", u"<conference/>", u"<conference><item/></conference>"}) {
        EXPECT_EQ(Browse(u"gcsrv_1", query), (Lines{"ChatServerBrowseResult (none) iq"}));
    }
}

TEST_F(RoomReplies, ARoomIsReportedBeforeItsEntries) {
    EXPECT_EQ(
        Browse(u"gcroom_1",
               u"<query xmlns='jabber:iq:browse'><conference><user jid='a' name='A' category='x' type='t'/>"
               u"<item jid='b' category='y'/><user name='no'/><other jid='no'/></conference></query>"),
        (Lines{"ChatRoomBrowseResult c iq", "GroupChatItem c a A t user", "GroupChatItem c b  y item"}));
    EXPECT_EQ(Browse(u"gcroom_1", u""), (Lines{"ChatRoomBrowseResult c iq"}));
}

TEST_F(RoomReplies, OtherIdsAndErrorsRaiseNothing) {
    EXPECT_EQ(Browse(u"KV_1", u"<conference><item jid='a'/></conference>"), Lines{});
    EXPECT_EQ(Browse(u"gcsrv_1", u"<conference><item jid='a'/></conference>", u"error"), Lines{});
}

class Saboteur : public SessionEvents {
public:
    void OnChatRoomBrowseResult(StringView, const NodePtr& node) override { node->xml(u""); }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>&, StringView, const NodePtr&) override {
        ++items;
    }
    int items = 0;
};

TEST_F(RoomReplies, AHandlerMayReplaceTheStanzaThatItIsGiven) {
    auto saboteur = std::make_shared<Saboteur>();
    FakeLink sabotaged(saboteur);
    HandleBrowse(sabotaged,
                 StanzaOf(u"<iq type='result' id='gcroom_1'><conference><item jid='a'/><item jid='b'/>"
                          u"</conference></iq>"));
    EXPECT_EQ(saboteur->items, 2);
}

TEST_F(RoomReplies, AConferenceTellsOfARoomWhoseAddressIsSplitAtTheSign) {
    const std::tuple<StringView, StringView, StringView> cases[] = {
        {u"r@c", u"r", u"c"}, {u"c", u"", u"c"}, {u"r@c/n@x", u"r", u"c"}, {u"", u"", u""}};
    for (const auto& [from, chatRoom, server] : cases) {
        HandleConference(link, StanzaOf(Concat({u"<iq type='result' from='", from,
                                                u"'><query><name>N</name><nick>me</nick></query></iq>"})));
        EXPECT_EQ(log->room->JID(), from);
        EXPECT_EQ(log->room->ChatRoom(), chatRoom);
        EXPECT_EQ(log->room->Server(), server);
        EXPECT_EQ(log->room->RoomName() + log->room->NickName(), u"Nme");
        EXPECT_FALSE(log->room->NeedPassword());
    }
    log->Take();
    HandleConference(link, StanzaOf(u"<iq type='result' from='r@c'><query><secret/></query></iq>"));
    EXPECT_TRUE(log->room->NeedPassword());
    HandleConference(link, StanzaOf(u"<iq type='set' from='r@c'><query/></iq>"));
    EXPECT_EQ(log->Take(), (Lines{"GroupChat r@c iq"}));
}

}  // namespace
}  // namespace quorix::tests
