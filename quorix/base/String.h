/// \file
/// The character string of the whole interface, and the few operations on it that the library shares.
///
/// Two kinds of content travel in a String. *Text* is ordinary UTF-16. *Wire text* holds one character per
/// byte, codes 0 to 255 (see WireText.h). Case folding is ASCII only: a Unicode fold would tear UTF-8 wire
/// text apart. Numbers are read and written in the "C" locale.
#pragma once

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "quorix/base/Export.h"

namespace quorix {

using String = std::u16string;
using StringView = std::u16string_view;

/// All parts in one string, with one allocation.
QUORIX_API String Concat(std::initializer_list<StringView> parts);

/// `value` in decimal, with a minus sign when negative.
QUORIX_API String ToString(std::int64_t value);

QUORIX_API String ToLower(StringView text);
QUORIX_API void FoldToLower(String& text, std::size_t count);  // its first `count` characters
QUORIX_API String ToUpper(StringView text);
QUORIX_API bool EqualsIgnoringCase(StringView left, StringView right);
QUORIX_API std::weak_ordering CompareIgnoringCase(StringView left, StringView right);
QUORIX_API bool StartsWith(StringView text, StringView prefix);

/// `text` without the white space (blank, tab, CR, LF) at its ends.
QUORIX_API StringView Trim(StringView text);
QUORIX_API bool IsSpace(char16_t c);
QUORIX_API bool IsBlank(StringView text);

/// `text` with every occurrence of `from` replaced, scanning once from the left.
QUORIX_API String ReplaceAll(StringView text, StringView from, StringView to);

}  // namespace quorix
