#include "quorix/base/XmlText.h"

#include <algorithm>

namespace quorix {

namespace {

constexpr bool IsHighHalf(char16_t unit) { return (unit & 0xFC00U) == 0xD800U; }
constexpr bool IsLowHalf(char16_t unit) { return (unit & 0xFC00U) == 0xDC00U; }

bool IsLoneHalf(StringView text, std::size_t at) {
    if (IsHighHalf(text[at])) return at + 1 == text.size() || !IsLowHalf(text[at + 1]);
    return IsLowHalf(text[at]) && (at == 0 || !IsHighHalf(text[at - 1]));
}

// What stands for itself in every place. It is copied in runs.
bool IsPlain(char16_t unit) { return IsPlainAscii(unit) || (unit >= 0x80 && unit < 0xD800); }

// Appends `value`, with `replace(at)` for the unit there wherever that is not empty.
template <class Replace>
void AppendReplaced(String& out, StringView value, Replace replace) {
    std::size_t copied = 0;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (IsPlain(value[at])) continue;
        StringView replacement = replace(at);
        if (replacement.empty()) continue;
        out.append(value, copied, at - copied);
        out.append(replacement);
        copied = at + 1;
    }
    out.append(value, copied);
}

constexpr StringView kReplacementText(&kReplacement, 1);

std::size_t EntityLength(StringView text) {
    for (StringView entity : {u"&amp;", u"&lt;", u"&gt;", u"&quot;", u"&apos;"}) {
        if (StartsWith(text, entity)) return entity.size();
    }
    return 0;
}

int DigitOf(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    char16_t lower = c | 0x20U;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : 16;
}

bool IsCharacter(unsigned long code) {
    bool half = code >= 0xD800 && code < 0xE000;
    if (code >= 0x10000) return code < 0x110000;
    return !half && !IsForbidden(static_cast<char16_t>(code));
}

// "&#233;" and "&#xE9;", of characters that XML can hold.
std::size_t NumberLength(StringView text) {
    if (!StartsWith(text, u"&#")) return 0;
    const bool isHex = text.size() > 2 && text[2] == u'x';
    const int base = isHex ? 16 : 10;
    const std::size_t begin = isHex ? 3 : 2;
    unsigned long code = 0;
    std::size_t at = begin;
    for (; at < text.size() && DigitOf(text[at]) < base; ++at) {
        code = std::min(code * static_cast<unsigned>(base) + static_cast<unsigned>(DigitOf(text[at])),
                        0x110000UL);
    }
    bool isWhole = at > begin && at < text.size() && text[at] == u';';
    return isWhole && IsCharacter(code) ? at + 1 : 0;
}

// What stands for the suspect at `at` so that it does not break out of `place`.
StringView Guard(StringView value, std::size_t at, Place place) {
    switch (value[at]) {
        case u'<': return u"&lt;";
        case u'&': return ReferenceLength(value.substr(at)) == 0 ? u"&amp;" : u"";
        case u'"': return place == Place::DoubleQuotes ? u"&quot;" : u"";
        case u'\'': return place == Place::SingleQuotes ? u"&apos;" : u"";
        case u'>': {
            bool endsSection = at >= 2 && value[at - 1] == u']' && value[at - 2] == u']';
            return endsSection && place == Place::Content ? u"&gt;" : u"";
        }
        default: return IsForbidden(value[at]) ? kWireReplacement : u"";
    }
}

}  // namespace

bool HasForbidden(StringView text) { return std::any_of(text.begin(), text.end(), IsForbidden); }

String WithoutForbidden(StringView text) {
    String result(text);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (IsPlain(text[at])) continue;
        if (IsForbidden(text[at]) || IsLoneHalf(text, at)) result[at] = kReplacement;
    }
    return result;
}

StringView ReferenceOf(char16_t unit, Place place) {
    const bool quoted = place != Place::Content;
    switch (unit) {
        case u'&': return u"&amp;";
        case u'<': return u"&lt;";
        case u'>': return u"&gt;";
        case u'\r': return u"&#13;";
        case u'"': return place == Place::DoubleQuotes ? u"&quot;" : u"";
        case u'\'': return place == Place::SingleQuotes ? u"&apos;" : u"";
        case u'\t': return quoted ? u"&#9;" : u"";
        case u'\n': return quoted ? u"&#10;" : u"";
        default: return {};
    }
}

void AppendEscaped(String& xml, StringView value, Place place) {
    AppendReplaced(xml, value, [&](std::size_t at) {
        bool lost = IsForbidden(value[at]) || IsLoneHalf(value, at);
        return lost ? kReplacementText : ReferenceOf(value[at], place);
    });
}

void AppendGuarded(String& xml, StringView value, Place place) {
    AppendReplaced(xml, value, [&](std::size_t at) { return Guard(value, at, place); });
}

std::size_t ReferenceLength(StringView text) { return std::max(EntityLength(text), NumberLength(text)); }

}  // namespace quorix
