#include "quorix/base/String.h"

#include <algorithm>

namespace quorix {

namespace {

char16_t Lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }
char16_t Upper(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c; }

template <class Fold>
String Folded(StringView text, Fold fold) {
    String result(text);
    std::transform(result.begin(), result.end(), result.begin(), fold);
    return result;
}

}  // namespace

String Concat(std::initializer_list<StringView> parts) {
    std::size_t size = 0;
    for (StringView part : parts) size += part.size();
    String result;
    result.reserve(size);
    for (StringView part : parts) result += part;
    return result;
}

String ToString(std::int64_t value) {
    std::string digits = std::to_string(value);
    return {digits.begin(), digits.end()};
}

void FoldToLower(String& text, std::size_t count) {
    auto end = text.begin() + static_cast<std::ptrdiff_t>(count);
    std::transform(text.begin(), end, text.begin(), Lower);
}

String ToLower(StringView text) { return Folded(text, Lower); }
String ToUpper(StringView text) { return Folded(text, Upper); }

bool EqualsIgnoringCase(StringView left, StringView right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return Lower(a) == Lower(b); });
}

std::weak_ordering CompareIgnoringCase(StringView left, StringView right) {
    return std::lexicographical_compare_three_way(
        left.begin(), left.end(), right.begin(), right.end(),
        [](char16_t a, char16_t b) -> std::weak_ordering { return Lower(a) <=> Lower(b); });
}

bool StartsWith(StringView text, StringView prefix) { return text.substr(0, prefix.size()) == prefix; }

bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

bool IsBlank(StringView text) { return std::all_of(text.begin(), text.end(), IsSpace); }

StringView Trim(StringView text) {
    while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

String ReplaceAll(StringView text, StringView from, StringView to) {
    String result;
    std::size_t start = 0;
    for (std::size_t at = text.find(from); at != StringView::npos; at = text.find(from, start)) {
        result += text.substr(start, at - start);
        result += to;
        start = at + from.size();
    }
    result += text.substr(start);
    return result;
}

}  // namespace quorix
