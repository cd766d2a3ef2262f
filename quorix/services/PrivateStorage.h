// Data that the server keeps for the account (jabber:iq:private). The element that carries it is named by
// the text of its namespace before the first ":". Error 5 when the namespace has no ":", or no XML
// name before it; an id is taken all the same.
#pragma once

#include "quorix/link/SessionLink.h"

namespace quorix {

// `data` is XML, inserted as it is.
void StorePrivateData(SessionLink& link, StringView xmlns, StringView data);

// Takes an id and sends nothing, on purpose; always "". To read stored data, send the query with SendXML and
// take the answer from OnIQ.
String getPrivateData(SessionLink& link, StringView xmlns);

}  // namespace quorix
