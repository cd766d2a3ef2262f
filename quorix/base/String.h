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

namespace quorix {

using String = std::u16string;
using StringView = std::u16string_view;

/// All parts in one string, with one allocation.
String Concat(std::initializer_list<StringView> parts);

/// `value` in decimal, with a minus sign when negative.
String ToString(std::int64_t value);

String ToLower(StringView text);
void FoldToLower(String& text, std::size_t count);  // its first `count` characters
String ToUpper(StringView text);
bool EqualsIgnoringCase(StringView left, StringView right);
std::weak_ordering CompareIgnoringCase(StringView left, StringView right);
bool StartsWith(StringView text, StringView prefix);

/// `text` without the white space (blank, tab, CR, LF) at its ends.
StringView Trim(StringView text);
bool IsSpace(char16_t c);
bool IsBlank(StringView text);

/// `text` with every occurrence of `from` replaced, scanning once from the left.
String ReplaceAll(StringView text, StringView from, StringView to);

}  // namespace quorix
