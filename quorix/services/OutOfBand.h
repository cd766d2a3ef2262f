// Files offered by their URL (jabber:iq:oob). The library moves no file, only the offer and its answer.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

// `description` and `url` are text and go out UTF-8 encoded.
void SendOOBRequest(SessionLink& link, StringView jid, StringView description, StringView url);

// Tells the one who made the offer that the file has been fetched. Carries a fresh id.
void SendOOBComplete(SessionLink& link, StringView jid);

// An offer, or the answer to ours: OnOOBResult reports errors too.
void HandleOob(SessionLink& link, const Stanza& stanza);

}  // namespace quorix
