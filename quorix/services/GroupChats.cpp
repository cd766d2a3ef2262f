#include "quorix/services/GroupChats.h"
#include "quorix/base/CollectionElements.h"

#include "quorix/base/Jid.h"
#include "quorix/link/StanzaText.h"
#include "quorix/services/PositionWhere.h"

namespace quorix {

template class Collection<std::shared_ptr<cGroupChat>>;

namespace {

void Require(const std::shared_ptr<cGroupChat>& room) {
    if (!room) throw AutomationError(ERR_ObjectNotSet);
}

// Two blanks before `type`, as peers have always seen it.
String RoomPresence(const TextRules& rules, const cGroupChat& room, bool available) {
    return Compose(rules, {u"<presence to='", Quoted(room.JID(), Put::Encoded), u"/",
                           Quoted(room.NickName(), Put::Encoded),
                           Markup(available ? u"'/>" : u"'  type='unavailable'/>")});
}

// Whether what a record holds is a received value, as it came or as text.
class IsReceived {
public:
    IsReceived(const TextRules& rules, StringView received)
        : received_(received), text_(rules.Read(String(received))) {}
    bool operator()(StringView recorded) const { return recorded == received_ || recorded == text_; }

private:
    StringView received_;
    String text_;
};

StringView ShowText(eShowType showType) {
    switch (showType) {
        case KV_chat: return u"chat";
        case KV_Away: return u"away";
        case KV_DND: return u"dnd";
        default: return {};
    }
}

}  // namespace

std::int32_t GroupChats::FindGroupChat(StringView jid) const {
    return PositionWhere(items_, [&](const auto& room) { return room->JID() == jid; });
}

std::int32_t GroupChats::FindFromWire(const TextRules& rules, StringView jid) const {
    IsReceived matches(rules, jid);
    return PositionWhere(items_, [&](const auto& room) { return matches(room->JID()); });
}

std::int32_t GroupChats::FindSameRoom(StringView jid) const {
    String bare = RemoveResource(jid);
    return PositionWhere(
        items_, [&](const auto& room) { return EqualsIgnoringCase(RemoveResource(room->JID()), bare); });
}

void GroupChats::SendGroupChatRequest(SessionLink& link, const std::shared_ptr<cGroupChat>& room,
                                      bool available) {
    Require(room);
    link.SendXML(RoomPresence(link.Text(), *room, available));
    std::int32_t position = FindSameRoom(room->JID());
    if (!available) {
        if (position > 0) items_.Remove(position);
    } else if (position > 0) {
        items_.Replace(position, room);
    } else {
        items_.Add(room);
    }
}

bool GroupChats::Leave(const TextRules& rules, StringView jid, StringView nickname) {
    std::int32_t position = FindFromWire(rules, jid);
    if (position == 0 || !IsReceived(rules, nickname)(items_.Item(position)->NickName())) return false;
    items_.Remove(position);
    return true;
}

void SendGroupChatPresence(SessionLink& link, StringView groupJid, eShowType showType, StringView status) {
    const TextRules& rules = link.Text();
    String xml = Compose(rules, {u"<presence to='", Quoted(groupJid, Put::Encoded), u"'><show>",
                                 Content(ShowText(showType)), u"</show>"});
    if (!status.empty()) Extend(xml, rules, {u"<status>", Content(status, Put::Encoded), u"</status>"});
    link.SendXML(xml += u"</presence>");
}

void ChangeGCNickName(SessionLink& link, const std::shared_ptr<cGroupChat>& room, StringView nickname) {
    Require(room);
    link.SendXML(Compose(link.Text(), {u"<iq to= '", Quoted(room->JID()),
                                       u"' type='set'><query xmlns='jabber:iq:conference'><nick>",
                                       Content(nickname), u"</nick></query></iq>"}));
    room->NickName(nickname);
}

}  // namespace quorix
