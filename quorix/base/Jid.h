// The two halves of a Jabber identifier `user@host/resource`, cut at its first "/".
#pragma once

#include "quorix/base/String.h"

namespace quorix {

// The text before the first "/", the whole text when there is none.
String RemoveResource(StringView jid);

// The text after the first "/", empty when there is none.
String GetResource(StringView jid);

}  // namespace quorix
