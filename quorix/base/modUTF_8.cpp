#include "quorix/base/modUTF_8.h"

#include <algorithm>
#include <optional>

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

constexpr unsigned kUnitLimit = 0x8000;

// Empty for what needs none.
constexpr StringView EntityOf(char16_t unit) {
    switch (unit) {
        case u'&': return u"&amp;";
        case u'"': return u"&quot;";
        case u'<': return u"&lt;";
        case u'>': return u"&gt;";
        case u'\'': return u"&apos;";
        default: return {};
    }
}

void AppendSequence(String& out, unsigned unit) {
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

bool FitsCodec(StringView text, bool escape) {
    constexpr std::size_t kLongestEntity = 6;
    if (!escape || text.size() <= kMaxCodecUnits / kLongestEntity) return text.size() <= kMaxCodecUnits;
    std::size_t units = text.size();
    for (char16_t unit : text) units += std::max<std::size_t>(EntityOf(unit).size(), 1) - 1;
    return units <= kMaxCodecUnits;
}

// Appends the wire form of `text`, with `reference(unit)` for a unit wherever that is not empty. False where
// a unit has none.
template <class Reference>
bool AppendWire(String& out, StringView text, Reference reference) {
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (IsPlainAscii(unit)) continue;
        out.append(text, copied, at - copied);
        copied = at + 1;
        if (StringView entity = reference(unit); !entity.empty()) {
            out.append(entity);
        } else if (IsForbidden(unit)) {
            out.append(kWireReplacement);
        } else if (unit < kUnitLimit) {
            AppendSequence(out, unit);
        } else {
            return false;
        }
    }
    out.append(text, copied);
    return true;
}

template <class Reference>
bool AppendWireOrNothing(String& out, StringView text, Reference reference) {
    const std::size_t before = out.size();
    if (AppendWire(out, text, reference)) return true;
    out.resize(before);
    return false;
}

// The character whose entity, but for its "&", `text` begins with, and that entity's length; "&amp;" aside.
struct Entity {
    char16_t character = 0;
    std::size_t length = 0;
};

Entity EntityAt(StringView text) {
    for (char16_t c : {u'"', u'<', u'>', u'\''}) {
        StringView name = EntityOf(c).substr(1);
        if (StartsWith(text, name)) return {c, name.size()};
    }
    return {};
}

}  // namespace

// One pass. An "&" that comes of "&amp;" may begin another entity, but not "&amp;" again.
String XmlUnescape(StringView text) {
    String result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        std::size_t plain = std::min(text.find(u'&', at), text.size());
        result.append(text, at, plain - at);
        if (plain == text.size()) break;
        at = plain + (StartsWith(text.substr(plain), u"&amp;") ? 5 : 1);
        Entity entity = EntityAt(text.substr(at));
        result += entity.length > 0 ? entity.character : u'&';
        at += entity.length;
    }
    return result;
}

bool AppendEncoded(String& out, StringView text, bool escape) {
    return FitsCodec(text, escape) &&
           AppendWireOrNothing(out, text, [=](char16_t c) { return escape ? EntityOf(c) : StringView(); });
}

bool AppendEncoded(String& xml, StringView text, Place place) {
    return FitsCodec(text, false) &&
           AppendWireOrNothing(xml, text, [=](char16_t c) { return ReferenceOf(c, place); });
}

String EncodeUTF8(StringView text, bool escape) {
    String result;
    result.reserve(text.size() + text.size() / 8);
    return AppendEncoded(result, text, escape) ? result : String(text);
}

bool IsDecoded(StringView wire) {
    if (wire.size() > kMaxCodecUnits) return true;
    unsigned found = 0;  // without a way out, so that many are looked at in one step
    for (char16_t c : wire) found |= static_cast<unsigned>(c >= 0x80) | static_cast<unsigned>(c == u'&');
    return found == 0;
}

String DecodeUTF8(StringView wire, bool unescape) {
    if (wire.size() > kMaxCodecUnits || !IsWire(wire)) return String(wire);
    String result;
    result.reserve(wire.size());
    StringView rest = wire;
    while (true) {
        const std::size_t plain = AsciiPrefix(rest);
        result.append(rest, 0, plain);
        rest.remove_prefix(plain);
        if (rest.empty()) break;
        std::optional<char16_t> unit = TakeUnit(rest);
        if (!unit) return String(wire);
        result += *unit;
    }
    if (unescape && result.find(u'&') != String::npos) return XmlUnescape(result);
    return result;
}

}  // namespace quorix
