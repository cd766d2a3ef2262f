// Looking for rooms and into them (jabber:iq:browse, XEP-0011). The replies are known by the prefix of
// their ids.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

// The rooms of the conference server `jid`: OnChatServerBrowseResult for each. The reply's id is "gcsrv_" and
// `id`.
void BrowseChatServer(SessionLink& link, StringView jid, StringView id);

// What is in the room `jid`: OnChatRoomBrowseResult, then OnGroupChatItem for each entry. The reply's id is
// "gcroom_" and `id`.
void BrowseChatRoom(SessionLink& link, StringView jid, StringView id);

// Either reply. Records are complete before the first event, so a handler may change the stanza.
void HandleBrowse(SessionLink& link, const Stanza& stanza);

}  // namespace quorix
