// Being in chat rooms: joining, leaving, the own name and presence there, and the rooms that the session
// takes for rooms.
#pragma once

#include "quorix/base/Collection.h"
#include "quorix/base/Enumerations.h"
#include "quorix/link/SessionLink.h"
#include "quorix/services/cGroupChat.h"

namespace quorix {

class GroupChats {
public:
    using List = Collection<std::shared_ptr<cGroupChat>>;

    // The rooms joined, in the order of joining.
    List& Items() { return items_; }
    const List& Items() const { return items_; }

    // Position from 1 of the room with exactly this JID, 0 when there is none.
    std::int32_t FindGroupChat(StringView jid) const;

    // The same for an address from the wire, which a record may hold as text or as it came.
    std::int32_t FindFromWire(const TextRules& rules, StringView jid) const;

    // Joins or leaves `room` under its NickName. A join takes the place of the record with the same bare JID
    // (ASCII case aside), a leave removes that record. Error 91 without a room.
    void SendGroupChatRequest(SessionLink& link, const std::shared_ptr<cGroupChat>& room, bool available);

    // When `jid` is that of a room in which the user is called `nickname`: forgets the room, true. Both are
    // wire text.
    bool Leave(const TextRules& rules, StringView jid, StringView nickname);

private:
    std::int32_t FindSameRoom(StringView jid) const;

    List items_;
};

// The user's presence in one room. The show element is always written, empty for KV_None and
// KV_ExtendedAway; the status only when there is one.
void SendGroupChatPresence(SessionLink& link, StringView groupJid, eShowType showType, StringView status);

// Asks the room for another name (jabber:iq:conference) and sets it in the record. Error 91 without a room.
// In KV_Classic both values are wire text.
void ChangeGCNickName(SessionLink& link, const std::shared_ptr<cGroupChat>& room, StringView nickname);

}  // namespace quorix
