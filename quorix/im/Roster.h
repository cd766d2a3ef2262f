// The roster on the wire, apart from its table: the request, and contacts that somebody sends in a message.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

// Asks for the whole roster (jabber:iq:roster).
void FetchRoster(SessionLink& session);

// Raises OnReceiveRosterItem for each contact inside the message (jabber:x:roster, XEP-0093). Addresses and
// names are wire text. The contacts have no session and stand in no table; the application decides.
void ParseReceiveRoster(SessionLink& session, const cXML_Node& message);

}  // namespace quorix
