// Between what a user types or reads and what travels.
#pragma once

#include "quorix/base/WireText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix::console {

// Text as it must stand inside a stanza.
inline String Wire(StringView text) { return EncodeUTF8(text, true); }

inline String Readable(StringView wire) { return TextFromUtf8(BytesFromWire(wire)); }

}  // namespace quorix::console
