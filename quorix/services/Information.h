// Software version, local time and last activity (jabber:iq:version, jabber:iq:time, jabber:iq:last): asked
// of others, answered to others.
//
// In KV_Classic all values are wire text. An answer carries a fresh id, not that of the request.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

void SendVersionRequest(SessionLink& link, StringView jid);
void SendTimeRequest(SessionLink& link, StringView jid);
void SendLastSeenRequest(SessionLink& link, StringView jid);

void SendVersionResponse(SessionLink& link, StringView jid, StringView name, StringView version,
                         StringView os);

// `utc` is CCYYMMDDThh:mm:ss by the protocol; `display` is for people.
void SendTimeResponse(SessionLink& link, StringView jid, StringView utc, StringView timeZone,
                      StringView display);

void SendGetLastResponse(SessionLink& link, StringView jid, StringView seconds);

// Requests and results; errors are not theirs to report.
void HandleVersion(SessionLink& link, const Stanza& stanza);
void HandleTime(SessionLink& link, const Stanza& stanza);
void HandleLast(SessionLink& link, const Stanza& stanza);

}  // namespace quorix
