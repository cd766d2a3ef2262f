#include "quorix/base/modUTF_8.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace quorix {

namespace {

constexpr unsigned kUnitLimit = 0x8000;

constexpr std::array<std::pair<StringView, StringView>, 5> kEntities{{
    {u"&", u"&amp;"},
    {u"\"", u"&quot;"},
    {u"<", u"&lt;"},
    {u">", u"&gt;"},
    {u"'", u"&apos;"},
}};

void AppendEncoded(String& out, unsigned unit) {
    auto put = [&](unsigned byte) { out += static_cast<char16_t>(byte); };
    if (unit < 128) {
        put(unit);
    } else if (unit < 2048) {
        put((unit >> 6U) + 192), put((unit & 63U) + 128);
    } else {
        put((unit >> 12U) + 224), put(((unit >> 6U) & 63U) + 128), put((unit & 63U) + 128);
    }
}

int SequenceLength(int lead) {
    if (lead < 192) return 1;
    return lead < 224 ? 2 : 3;
}

// The unit at the front of `wire`, which is consumed; nothing when it cannot be formed.
std::optional<char16_t> TakeUnit(StringView& wire) {
    auto byte = [&](std::size_t i) { return static_cast<int>(wire[i]); };
    int lead = byte(0);
    auto length = static_cast<std::size_t>(SequenceLength(lead));
    if (wire.size() < length) return {};
    int unit = lead;
    if (length == 2) unit = (lead - 192) * 64 + (byte(1) - 128);
    if (length == 3) unit = (lead - 224) * 4096 + (byte(1) - 128) * 64 + (byte(2) - 128);
    wire.remove_prefix(length);
    if (unit >= static_cast<int>(kUnitLimit)) return {};
    return static_cast<char16_t>(unit);
}

bool IsWire(StringView text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 256; });
}

bool IsAscii(StringView text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 128; });
}

}  // namespace

String XmlEscape(StringView text) {
    if (text.find_first_of(u"&\"<>'") == StringView::npos) return String(text);
    String result(text);
    for (const auto& [character, entity] : kEntities) result = ReplaceAll(result, character, entity);
    return result;
}

String XmlUnescape(StringView text) {
    String result(text);
    for (const auto& [character, entity] : kEntities) {
        if (result.find(u'&') == String::npos) break;
        result = ReplaceAll(result, entity, character);
    }
    return result;
}

String EncodeUTF8(StringView text, bool escape) {
    String source = escape ? XmlEscape(text) : String(text);
    if (source.size() > kMaxCodecUnits) return String(text);
    if (IsAscii(source)) return source;
    String result;
    result.reserve(source.size() * 2);
    for (char16_t unit : source) {
        if (unit >= kUnitLimit) return String(text);
        AppendEncoded(result, unit);
    }
    return result;
}

String DecodeUTF8(StringView wire, bool unescape) {
    if (wire.size() > kMaxCodecUnits || !IsWire(wire)) return String(wire);
    String result;
    if (IsAscii(wire)) {
        result = wire;
    } else {
        result.reserve(wire.size());
        for (StringView rest = wire; !rest.empty();) {
            std::optional<char16_t> unit = TakeUnit(rest);
            if (!unit) return String(wire);
            result += *unit;
        }
    }
    return unescape ? XmlUnescape(result) : result;
}

}  // namespace quorix
