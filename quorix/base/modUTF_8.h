// The UTF-8 forms of single values: builders encode what they place into a stanza, parsers decode what they
// read from one. The conversions know 16-bit code units below U+8000 only.
#pragma once

#include "quorix/base/String.h"
#include "quorix/base/XmlText.h"

namespace quorix {

// Values longer than this are returned as they are.
inline constexpr std::size_t kMaxCodecUnits = 32767;

// Text to wire text; with `escape`, & " < > ' go by their entities. What XML cannot hold (XmlText.h) becomes
// U+FFFD. A text that holds a unit of U+8000 or above (surrogates included, U+FFFE and U+FFFF not), or more
// than kMaxCodecUnits units after escaping, is returned unchanged: neither escaped nor encoded.
String EncodeUTF8(StringView text, bool escape);

// Appends what EncodeUTF8 would return, or nothing and false when that is `text` unchanged.
bool AppendEncoded(String& out, StringView text, bool escape);

// Appends what EncodeUTF8 would return without escaping, with the references of `place` (XmlText.h); or
// nothing and false when that is `text` unchanged.
bool AppendEncoded(String& xml, StringView text, Place place);

// Wire text to text; with `unescape`, through XmlUnescape afterwards. Continuation bytes are not checked. A
// sequence that is cut off at the end or whose value exceeds 32767, or an input of more than kMaxCodecUnits
// characters, returns the input unchanged.
String DecodeUTF8(StringView wire, bool unescape);

// Whether decoding with `unescape` would return it as it is: in most cases.
bool IsDecoded(StringView wire);

// The entities by their characters, "&amp;" first: "&amp;lt;" becomes "<", on purpose.
String XmlUnescape(StringView text);

}  // namespace quorix
