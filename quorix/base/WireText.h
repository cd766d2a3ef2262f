/// \file
/// Wire text: the bytes of the stream, one character per byte, codes 0 to 255, by identity on every system.
#pragma once

#include <string>
#include <string_view>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

QUORIX_API bool IsAscii(std::string_view bytes);

/// How much at the front is ASCII.
QUORIX_API std::size_t AsciiPrefix(std::string_view bytes);
QUORIX_API std::size_t AsciiPrefix(StringView text);

QUORIX_API String WireFromBytes(std::string_view bytes);
QUORIX_API void PutWire(char16_t* out, std::string_view bytes);  // where there is room for as many

/// The inverse. A character above 255 has no byte and goes out as "?".
QUORIX_API std::string BytesFromWire(StringView wire);

/// Real UTF-8, the whole of it, for files, consoles and the XML parser; the stream's own limited form is in
/// modUTF_8.h. An unpaired surrogate becomes U+FFFD; a malformed byte sequence becomes one U+FFFD a byte.
QUORIX_API std::string Utf8FromText(StringView text);
QUORIX_API String TextFromUtf8(std::string_view utf8);
QUORIX_API void AppendText(String& out, std::string_view utf8);

/// True when `text` is not UTF-16 throughout: half of a surrogate pair stands alone.
QUORIX_API bool HasLoneSurrogate(StringView text);

}  // namespace quorix
