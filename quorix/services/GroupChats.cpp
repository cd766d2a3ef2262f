#include "quorix/services/GroupChats.h"

#include "quorix/base/Jid.h"
#include "quorix/base/modUTF_8.h"
#include "quorix/services/PositionWhere.h"
#include "quorix/services/Query.h"

namespace quorix {

namespace {

void Require(const std::shared_ptr<cGroupChat>& room) {
    if (!room) throw AutomationError(ERR_ObjectNotSet);
}

// Two blanks before `type`, as peers have always seen it.
String RoomPresence(const cGroupChat& room, bool available) {
    return Concat({u"<presence to='", EncodeUTF8(room.JID(), false), u"/", EncodeUTF8(room.NickName(), false),
                   available ? u"'/>" : u"'  type='unavailable'/>"});
}

// Whether what a record holds is a value from the wire, as it came or as text.
class IsWireValue {
public:
    explicit IsWireValue(StringView wire) : wire_(wire), text_(DecodeUTF8(wire, true)) {}
    bool operator()(StringView recorded) const { return recorded == wire_ || recorded == text_; }

private:
    StringView wire_;
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

std::int32_t GroupChats::FindFromWire(StringView jid) const {
    IsWireValue matches(jid);
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
    link.SendXML(RoomPresence(*room, available));
    std::int32_t position = FindSameRoom(room->JID());
    if (!available) {
        if (position > 0) items_.Remove(position);
    } else if (position > 0) {
        items_.Replace(position, room);
    } else {
        items_.Add(room);
    }
}

bool GroupChats::Leave(StringView jid, StringView nickname) {
    std::int32_t position = FindFromWire(jid);
    if (position == 0 || !IsWireValue(nickname)(items_.Item(position)->NickName())) return false;
    items_.Remove(position);
    return true;
}

void SendGroupChatPresence(SessionLink& link, StringView groupJid, eShowType showType, StringView status) {
    String statusElement = status.empty() ? String() : Element(u"status", EncodeUTF8(status, false));
    link.SendXML(Concat({u"<presence to='", EncodeUTF8(groupJid, false), u"'>",
                         Element(u"show", ShowText(showType)), statusElement, u"</presence>"}));
}

void ChangeGCNickName(SessionLink& link, const std::shared_ptr<cGroupChat>& room, StringView nickname) {
    Require(room);
    link.SendXML(Concat({u"<iq to= '", room->JID(), u"' type='set'><query xmlns='jabber:iq:conference'>",
                         Element(u"nick", nickname), u"</query></iq>"}));
    room->NickName(nickname);
}

}  // namespace quorix
