// Messages on the wire: what arrives, and the short reports about what became of one.
#pragma once

#include <memory>

#include "quorix/im/cMessage.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

// Raises what a message means: OnError; or OnReceiveRosterItem for each contact in it; or OnGCInvite10; or
// OnMessage and an OnMessageEvent for each event that it asks for or reports.
void HandleMessage(const std::shared_ptr<SessionLink>& session, const Stanza& stanza);

// Reports `event` of the message `id` to its sender `jid`; with `cancel`, takes a former report back. In
// KV_Classic both texts are wire text.
void SendEvent(SessionLink& session, StringView jid, eEvent event, StringView id, bool cancel);

}  // namespace quorix
