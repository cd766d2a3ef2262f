#include "apps/console/Text.h"

#include "quorix/base/WireText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix::console {

namespace {

bool TakesWireText(const cSession& session) { return session.Mode() == KV_Classic; }

String Wire(StringView text) { return WireFromBytes(Utf8FromText(text)); }

}  // namespace

String Encoded(const cSession& session, StringView text) {
    return TakesWireText(session) ? Wire(text) : String(text);
}

String Inserted(const cSession& session, StringView text) {
    return TakesWireText(session) ? Wire(XmlEscape(text)) : String(text);
}

String InXml(const cSession& session, StringView text) { return RawXml(session, XmlEscape(text)); }

String RawXml(const cSession& session, StringView xml) { return Encoded(session, xml); }

String Readable(const cSession& session, StringView value) {
    return TakesWireText(session) ? TextFromUtf8(BytesFromWire(value)) : String(value);
}

}  // namespace quorix::console
