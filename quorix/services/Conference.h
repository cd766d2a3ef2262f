// What a room requires (jabber:iq:conference), and inviting to rooms (jabber:x:conference, XEP-0249).
// Invitations to us are messages, and handled there.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

// Invites `jid` to the room `roomJid`. In KV_Classic both are wire text.
void SendGCInvite10(SessionLink& link, StringView jid, StringView roomJid);

// A room's answer raises OnGroupChat.
void HandleConference(SessionLink& link, const Stanza& stanza);

}  // namespace quorix
