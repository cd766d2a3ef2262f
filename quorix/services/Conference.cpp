#include "quorix/services/Conference.h"

#include "quorix/base/Jid.h"
#include "quorix/link/StanzaText.h"
#include "quorix/services/cGroupChat.h"

namespace quorix {

namespace {

// Splits `room@server`; without "@" it is the server alone.
void SetAddress(cGroupChat& room, StringView jid) {
    String bare = RemoveResource(jid);
    std::size_t at = bare.find(u'@');
    room.JID(jid);
    room.ChatRoom(at == String::npos ? StringView() : StringView(bare).substr(0, at));
    room.Server(at == String::npos ? StringView(bare) : StringView(bare).substr(at + 1));
}

}  // namespace

void SendGCInvite10(SessionLink& link, StringView jid, StringView roomJid) {
    link.SendXML(Compose(link.Text(), {u"<message id='", Quoted(link.GetNextID()), u"' to='", Quoted(jid),
                                       u"'><x xmlns='jabber:x:conference' jid='", Quoted(roomJid),
                                       u"'/><subject>Invite to Groupchat:", Content(roomJid),
                                       u"</subject><body/></message>"}));
}

void HandleConference(SessionLink& link, const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    ParsedNode query = stanza.Query();
    auto room = std::make_shared<cGroupChat>();
    SetAddress(*room, stanza.From());
    room->RoomName(query.Child(u"name").Text());
    room->NickName(query.Child(u"nick").Text());
    room->NeedPassword(static_cast<bool>(query.Child(u"secret")));
    link.Raise(&SessionEvents::OnGroupChat, room, stanza.From(), stanza.Node());
}

}  // namespace quorix
