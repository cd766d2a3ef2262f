#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class Rooms : public LoggedIn {
protected:
    Lines Browse(const std::string& query, const std::string& type = "result") {
        return Raised("<iq type='" + type + "' from='c' id='gcsrv_1'>" + query + "</iq>");
    }
};

TEST_F(Rooms, AreJoinedLeftAndRenamedByDirectedStanzas) {
    auto room = Join(u"r@c", u"J\u00f6");
    EXPECT_EQ(Heard(), "<presence to='r@c/Jö'/>");
    session->SendGroupChatRequest(room, false);
    EXPECT_EQ(Heard(), "<presence to='r@c/Jö'  type='unavailable'/>");
    session->ChangeGCNickName(room, u"new");
    EXPECT_EQ(Heard(),
              "<iq to= 'r@c' type='set'><query xmlns='jabber:iq:conference'><nick>new</nick></query></iq>");
    EXPECT_EQ(room->NickName(), u"new");
    EXPECT_EQ(ErrorOf([&] { session->SendGroupChatRequest(nullptr, true); }), ERR_ObjectNotSet);
    EXPECT_EQ(ErrorOf([&] { session->ChangeGCNickName(nullptr, u"x"); }), ERR_ObjectNotSet);
    EXPECT_EQ(Heard(), "");
}

TEST_F(Rooms, TakeThePlaceOfTheSameRoomInAnyCaseAndAreLeftByTheirOwnNickname) {
    auto first = Join(u"a@c", u"n");
    Join(u"b@c", u"me");
    Join(u"A@C/x", u"m");
    EXPECT_EQ(session->Rooms().Count(), 2);
    EXPECT_EQ(session->FindGroupChat(u"A@C/x"), 1);
    EXPECT_EQ(session->FindGroupChat(u"a@c/x"), 0);
    session->SendGroupChatRequest(first, false);
    EXPECT_EQ(session->FindGroupChat(u"b@c"), 1);
    EXPECT_FALSE(LinkOf(session)->LeaveRoom(u"b@c", u"Me"));
    EXPECT_FALSE(LinkOf(session)->LeaveRoom(u"B@c", u"me"));
    EXPECT_TRUE(LinkOf(session)->LeaveRoom(u"b@c", u"me"));
    EXPECT_EQ(session->Rooms().Count(), 0);
}

TEST_F(Rooms, AreLeftWhetherTheirRecordHoldsTextOrWhatCameFromTheWire) {
    const std::pair<StringView, StringView> records[] = {{u"r\u00f6m@c", u"J\u00f6"},
                                                         {u"r\u00c3\u00b6m@c", u"J\u00c3\u00b6"}};
    for (const auto& [jid, nickname] : records) {
        Join(jid, nickname);
        EXPECT_EQ(Raised("<presence from='röm@c/Ann' type='unavailable'/>"),
                  Lines{"OnPresence röm@c Ann 0 0 2"});
        EXPECT_EQ(Raised("<presence from='röm@c/Jö' type='unavailable'/>"), Lines());
        EXPECT_EQ(session->Rooms().Count(), 0);
    }
}

TEST_F(Rooms, OfAServerAreItsItemsWithANamespaceOrElseWithAnAddress) {
    Browse(
        "<conference xmlns='jabber:iq:browse'>"
        "<item xmlns='jabber:iq:browse' jid='b@c' name='B' type='private'/></conference>");
    EXPECT_EQ(events->room->ServerType(), KV_Private);
    EXPECT_EQ(events->room->RoomName(), u"B");
    EXPECT_EQ(events->room->Server(), u"c");
    EXPECT_EQ(Browse("<conference xmlns='jabber:iq:browse'><item/></conference>"),
              (Lines{"OnChatServerBrowseResult (none) iq", "OnIQ"}));
    EXPECT_EQ(Browse("<conference xmlns='jabber:iq:browse'><item jid='a'/></conference>", "error"),
              (Lines{"OnIQError c 0 ", "OnIQ"}));
}

TEST_F(Rooms, AHandlerMayReplaceTheStanzaThatItIsGiven) {
    class Saboteur : public SessionEvents {
        void OnChatRoomBrowseResult(StringView, const NodePtr& node) override { node->xml(u""); }
    };
    session->Advise(std::make_shared<Saboteur>());
    Say("<iq type='result' id='gcroom_1'><conference xmlns='jabber:iq:browse'><item jid='a'/><item jid='b'/>"
        "</conference></iq>");
    EXPECT_EQ(events->Count("OnGroupChatItem"), 2U);
}

TEST_F(Rooms, AConferenceTellsOfARoomWhoseAddressIsSplitAtTheSign) {
    const std::tuple<std::string, StringView, StringView> cases[] = {
        {"r@c", u"r", u"c"}, {"c", u"", u"c"}, {"r@c/n@x", u"r", u"c"}, {"", u"", u""}};
    auto raised = [&](const std::string& from, const std::string& content) {
        return Raised("<iq type='result' from='" + from + "'><query xmlns='jabber:iq:conference'>" + content +
                      "</query></iq>");
    };
    for (const auto& [from, chatRoom, server] : cases) {
        EXPECT_EQ(raised(from, "<name>N</name><nick>me</nick>"),
                  (Lines{"OnGroupChat " + from + " iq", "OnIQ"}));
        EXPECT_EQ(events->room->ChatRoom(), chatRoom);
        EXPECT_EQ(events->room->Server(), server);
        EXPECT_EQ(events->room->RoomName() + events->room->NickName(), u"Nme");
        EXPECT_FALSE(events->room->NeedPassword());
    }
    raised("r@c", "<secret/>");
    EXPECT_TRUE(events->room->NeedPassword());
}

}  // namespace
}  // namespace quorix
