/// \file
/// The two halves of a Jabber identifier `user@host/resource`, cut at its first "/".
#pragma once

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// The text before the first "/", the whole text when there is none.
QUORIX_API String RemoveResource(StringView jid);

/// The text after the first "/", empty when there is none.
QUORIX_API String GetResource(StringView jid);

}  // namespace quorix
