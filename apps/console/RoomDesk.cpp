#include "apps/console/RoomDesk.h"

#include <algorithm>

#include "apps/console/Console.h"
#include "quorix/base/Jid.h"

namespace quorix::console {

// A room is recognised by its JID in lower case, as its presences come.
void RoomDesk::Join(StringView roomJid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(ToLower(RemoveResource(roomJid)));
    room->NickName(nickname);
    std::erase_if(rooms_, [&](const Member& known) { return known.room->JID() == room->JID(); });
    rooms_.push_back({room});
    Session().SendGroupChatRequest(room, true);
}

RoomDesk::Member* RoomDesk::Find(StringView roomJid) {
    const String jid = ToLower(RemoveResource(roomJid));
    auto found = std::find_if(rooms_.begin(), rooms_.end(),
                              [&](const Member& known) { return known.room->JID() == jid; });
    return found == rooms_.end() ? nullptr : &*found;
}

std::shared_ptr<cGroupChat> RoomDesk::Room(StringView roomJid) {
    if (const Member* member = Find(roomJid)) return member->room;
    Fail(String(roomJid), u"you are not in that room");
    return nullptr;
}

bool RoomDesk::HasJoined(StringView roomJid, StringView nickname) const {
    return std::any_of(rooms_.begin(), rooms_.end(), [&](const Member& known) {
        return known.room->JID() == roomJid && known.room->NickName() == nickname;
    });
}

void RoomDesk::Leave(StringView roomJid) {
    const std::shared_ptr<cGroupChat> room = Room(roomJid);
    if (!room) return;
    Session().SendGroupChatRequest(room, false);
    Owner().Chat().All().Close(room->JID());
    std::erase_if(rooms_, [&](const Member& known) { return known.room == room; });
    Show("left", {{"room", room->JID()}});
}

void RoomDesk::OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                          StringView /*ShowType*/, std::int32_t /*ItemType*/, const NodePtr& /*XMLElement*/) {
    Member* member = Find(PresenceItem->JID());
    if (member == nullptr || !bAvailable || member->room->NickName() != PresenceItem->Resource()) return;
    if (std::exchange(member->joined, true)) return;
    Owner().Chat().All().With(member->room->JID()).isRoom = true;
    Show("joined", {{"room", member->room->JID()}, {"nick", member->room->NickName()}});
}

// A refused presence raises no event of its own.
void RoomDesk::OnIncomingXML(StringView XML) {
    if (!StartsWith(XML, u"<presence")) return;
    auto node = std::make_shared<cXML_Node>();
    node->xml(XML);
    if (!node->Root().AttributeIs(u"type", u"error")) return;
    const String from = Text(node->Root().Attribute(u"from"));
    const Member* member = Find(from);
    if (member == nullptr) return Owner().Refused(Concat({u"Your presence did not reach ", from}), node);
    Owner().Refused(Concat({u"You did not get into ", member->room->JID()}), node);
    if (!member->joined) rooms_.erase(rooms_.begin() + (member - rooms_.data()));
}

// -- Looking around --

void RoomDesk::OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                        const NodePtr& /*XMLElement*/) {
    if (!Room) return Show("no-rooms", {});
    Show("room", {{"jid", Text(Room->JID())},
                  {"name", Text(Room->RoomName())},
                  {"_private", Room->ServerType() == KV_Private ? u" private" : u""},
                  {"private", Room->ServerType() == KV_Private}});
}

void RoomDesk::OnChatRoomBrowseResult(StringView FromJid, const NodePtr& /*XMLElement*/) {
    Show("look", {{"jid", Text(FromJid)}});
}

void RoomDesk::OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView FromJid,
                               const NodePtr& /*XMLElement*/) {
    Show("room-entry",
         {{"name", Text(BrowseItem->Name())}, {"jid", Text(BrowseItem->JID())}, {"room", Text(FromJid)}});
}

void RoomDesk::OnGCInvite10(StringView RoomJid, StringView FromJid, StringView Body, StringView /*Subject*/,
                            const NodePtr& /*XMLElement*/) {
    Show("invitation", {{"from", Text(FromJid)}, {"room", Text(RoomJid)}, {"text", Text(Body)}});
}

}  // namespace quorix::console
