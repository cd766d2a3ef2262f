#include "testkit/Senders.h"

namespace quorix::testkit {

std::shared_ptr<cGroupChat> RoomOf(StringView jid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(jid);
    room->NickName(nickname);
    return room;
}

namespace {

std::shared_ptr<cRosterItem> ContactOf(cSession& s, const Values& v) {
    auto item = s.CreateRosterItem();
    item->JID(v());
    item->NickName(v());
    return item;
}

std::shared_ptr<cMessage> MessageOf(cSession& s, const Values& v) {
    auto message = s.CreateMessage(v(), MSG_Chat, v(), v());
    message->ID(v());
    message->FromJid(v());
    return message;
}

}  // namespace

const std::vector<Sender> kSenders = {
    {"message", [](cSession& s, const Values& v) { MessageOf(s, v)->SendMessage(); }},
    {"message with extensions",
     [](cSession& s, const Values& v) {
         auto message = MessageOf(s, v);
         message->Thread(v());
         message->TextRtf(v());
         message->AddRoster(ContactOf(s, v));
         message->AddCC(u"a@b" + v());
         message->AddBCC(u"c@d" + v());
         message->SendMessage();
     }},
    {"event", [](cSession& s, const Values& v) { s.SendEvent(v(), KV_Displayed, v()); }},
    {"own presence", [](cSession& s, const Values& v) { s.Status(v()), s.SendMyPresence(); }},
    {"presence", [](cSession& s, const Values& v) { s.SendPresence(v(), KV_Subscribe, v()); }},
    {"contact added",
     [](cSession& s, const Values& v) {
         auto item = ContactOf(s, v);
         item->AddGroup(v());
         item->Add();
     }},
    {"contact changed", [](cSession& s, const Values& v) { ContactOf(s, v)->Update(); }},
    {"registration form", [](cSession& s, const Values& v) { s.GetAgentRegister(v(), v()); }},
    {"card asked for", [](cSession& s, const Values& v) { s.SendVCardRequest(v()); }},
    {"card",
     [](cSession& s, const Values& v) {
         auto card = std::make_shared<cVcard>();
         card->FullName(v());
         card->BusinessExtAddress(v());
         s.UpdateVcard(card);
     }},
    {"server browsed", [](cSession& s, const Values& v) { s.BrowseChatServer(v(), v()); }},
    {"room browsed", [](cSession& s, const Values& v) { s.BrowseChatRoom(v(), v()); }},
    {"room joined", [](cSession& s, const Values& v) { s.SendGroupChatRequest(RoomOf(v(), v()), true); }},
    {"room left", [](cSession& s, const Values& v) { s.SendGroupChatRequest(RoomOf(v(), v()), false); }},
    {"room presence", [](cSession& s, const Values& v) { s.SendGroupChatPresence(v(), KV_Away, v()); }},
    {"nickname", [](cSession& s, const Values& v) { s.ChangeGCNickName(RoomOf(v(), u"n"), v()); }},
    {"invitation", [](cSession& s, const Values& v) { s.SendGCInvite10(v(), v()); }},
    {"version asked for", [](cSession& s, const Values& v) { s.SendVersionRequest(v()); }},
    {"time asked for", [](cSession& s, const Values& v) { s.SendTimeRequest(v()); }},
    {"last activity asked for", [](cSession& s, const Values& v) { s.SendLastSeenRequest(v()); }},
    {"version", [](cSession& s, const Values& v) { s.SendVersionResponse(v(), v(), v(), v()); }},
    {"time", [](cSession& s, const Values& v) { s.SendTimeResponse(v(), v(), v(), v()); }},
    {"last activity", [](cSession& s, const Values& v) { s.SendGetLastResponse(v(), v()); }},
    {"private data", [](cSession& s, const Values& v) { s.StorePrivateData(u"a:" + v(), u"<d/>"); }},
    {"offer", [](cSession& s, const Values& v) { s.SendOOBRequest(v(), v(), v()); }},
    {"offer taken", [](cSession& s, const Values& v) { s.SendOOBComplete(v()); }},
    {"search",
     [](cSession& s, const Values& v) {
         s.SearchFields()->Clear();
         s.SearchFields()->Add(u"nick", u"a" + v());
         s.Agents().Item(u"A")->Search();
     }},
    {"registration",
     [](cSession& s, const Values& v) {
         auto agent = s.Agents().Item(u"A");
         agent->Fields().Clear();
         agent->AddField(u"nick", v());
         agent->Update();
     }},
    {"server address",
     [](cSession& s, const Values& v) {
         s.ServerAddress(v());
         s.FetchAgents(), s.RemoveAccount(), s.SendOOBComplete(u"j");
         s.ServerAddress(u"s");
     }},
    {"resource",
     [](cSession& s, const Values& v) {
         s.Resource(v()), s.CreateMessage(u"a", MSG_Chat, u"b", u"")->SendMessage();
     }},
};

}  // namespace quorix::testkit
