#include "apps/console/Text.h"

#include <algorithm>
#include <utility>

#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

bool TakesWireText(const cSession& session) { return session.Mode() == KV_Classic; }

// What can be typed, and no stream can hold.
bool IsForbidden(char16_t c) { return (c < u' ' && c != u'\t') || c >= 0xFFFE; }

String XmlEscaped(StringView text) {
    constexpr std::pair<StringView, StringView> kEntities[] = {
        {u"&", u"&amp;"}, {u"<", u"&lt;"}, {u">", u"&gt;"}, {u"\"", u"&quot;"}, {u"'", u"&apos;"}};
    String xml(text);
    std::replace_if(xml.begin(), xml.end(), IsForbidden, u'\uFFFD');
    for (const auto& [character, entity] : kEntities) xml = ReplaceAll(xml, character, entity);
    return xml;
}

String Wire(StringView text) { return WireFromBytes(Utf8FromText(text)); }

}  // namespace

String Encoded(const cSession& session, StringView text) {
    return TakesWireText(session) ? Wire(text) : String(text);
}

String Inserted(const cSession& session, StringView text) {
    return TakesWireText(session) ? Wire(XmlEscaped(text)) : String(text);
}

String InXml(const cSession& session, StringView text) { return RawXml(session, XmlEscaped(text)); }

String RawXml(const cSession& session, StringView xml) { return Encoded(session, xml); }

String Readable(const cSession& session, StringView value) {
    return TakesWireText(session) ? TextFromUtf8(BytesFromWire(value)) : String(value);
}

}  // namespace quorix::console
