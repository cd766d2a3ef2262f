// Between what a user types or reads and what a session takes or tells. The only place of the console that
// knows that a session of the classic mode has values in wire text, and how each of its members takes them.
#pragma once

#include "quorix/session/cSession.h"

namespace quorix::console {

// For a member that escapes its value and does not encode it.
String Encoded(const cSession& session, StringView text);

// For a member that inserts its value as it is.
String Inserted(const cSession& session, StringView text);

// For a stanza that is put together here and goes out by SendXML.
String InXml(const cSession& session, StringView text);

// XML as a user types it, for SendXML.
String RawXml(const cSession& session, StringView xml);

// A value of a record or an event, or XML of the traffic, as text.
String Readable(const cSession& session, StringView value);

}  // namespace quorix::console
