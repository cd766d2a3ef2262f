// Presence on the wire: our own, what is directed at others, and what others send.
#pragma once

#include <memory>

#include "quorix/im/PresenceTable.h"
#include "quorix/im/cPresenceItem.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

// Tells everybody who may know. `status` is text, `show` an eShowType; the priority is always sent.
void SendMyPresence(SessionLink& session, StringView status, std::int32_t show, std::int16_t priority);

// Sends one presence of the kind `subType` (an eSubType) to `jid`, then runs what is pending on the message
// loop. `jid` is wire text, `status` text. An empty `jid` addresses nobody in particular.
void SendPresence(SessionLink& session, StringView jid, std::int32_t subType, StringView status);

// Applies a presence to the table and raises its event.
void HandlePresence(const std::shared_ptr<SessionLink>& session, PresenceTable& table, const Stanza& stanza);

// Raises OnWhoisOnlineStart, OnWhoisOnlineUser for each presence inside the stanza, and OnWhoisOnlineEnd. The
// items hold the full address as their JID and stand in no table.
void ParsePresenceList(const std::shared_ptr<SessionLink>& session, const Stanza& stanza);

}  // namespace quorix
