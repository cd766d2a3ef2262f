// What XML makes of single characters: which of them cannot be in it, and which are written as references.
#pragma once

#include <array>

#include "quorix/base/String.h"

namespace quorix {

// Where a value stands in XML.
enum class Place { Content, SingleQuotes, DoubleQuotes };

inline constexpr char16_t kReplacement = u'\uFFFD';

// The wire form of kReplacement.
inline constexpr StringView kWireReplacement = u"\u00EF\u00BF\u00BD";

// Whether XML cannot hold `unit`, surrogates aside: U+0000 to U+001F but tab, LF and CR; U+FFFE; U+FFFF.
constexpr bool IsForbidden(char16_t unit) {
    return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
}

// The ASCII characters that stand for themselves everywhere: no control characters, and no & < > " '.
inline constexpr std::array<bool, 128> kPlainAscii = [] {
    std::array<bool, 128> plain{};
    for (std::size_t c = 0x20; c < plain.size(); ++c) plain[c] = true;
    for (char16_t c : {u'&', u'<', u'>', u'"', u'\''}) plain[c] = false;
    return plain;
}();
constexpr bool IsPlainAscii(char16_t unit) { return unit < kPlainAscii.size() && kPlainAscii[unit]; }

// Whether IsForbidden says so of a unit of `text`.
bool HasForbidden(StringView text);

// `text` with kReplacement for each unit that XML cannot hold, and for each half of a pair that stands alone.
String WithoutForbidden(StringView text);

// The reference that stands for `unit` in `place` so that it reads back as it was; empty where it stands for
// itself. White space that a parser would change is among them.
StringView ReferenceOf(char16_t unit, Place place);

// Appends `value` so that it reads back as it was: with references where `place` needs them, and
// kReplacement as in WithoutForbidden.
void AppendEscaped(String& xml, StringView value, Place place);

// Appends `value` as it is, as far as it can stand in `place`. What would break out of it, and only that,
// becomes a reference: the quote, "<", an "&" that begins no reference, and the ">" of "]]>" in content. A
// unit that XML cannot hold becomes kWireReplacement.
void AppendGuarded(String& xml, StringView value, Place place);

// The length of the reference that `text` begins with, 0 when it begins with none.
std::size_t ReferenceLength(StringView text);

}  // namespace quorix
