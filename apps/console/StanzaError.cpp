#include "apps/console/StanzaError.h"

#include <charconv>

#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

constexpr StringView kConditions = u"urn:ietf:params:xml:ns:xmpp-";

bool IsCondition(const XmlNode& node) {
    return StartsWith(node.Attribute(u"xmlns"), kConditions) && !node.Is(u"text");
}

// 0 when there is none, or no number.
std::int16_t CodeOf(const XmlNode& error) {
    const std::string digits = Utf8FromText(error.Attribute(u"code"));
    std::int16_t code = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), code);
    return code;
}

// Older servers write the text into the error itself.
String TextOf(const XmlNode& error) {
    if (const XmlNode text = error.Child(u"text")) return text.Text();
    return error.FirstElement() ? String() : error.Text();
}

}  // namespace

StanzaError StanzaError::Of(const XmlNode& stanza) {
    const XmlNode error = stanza.Is(u"stream:error") ? stanza : stanza.Child(u"error");
    StanzaError found;
    found.code = CodeOf(error);
    found.text = TextOf(error);
    for (XmlNode child = error.FirstElement(); child; child = child.NextElement()) {
        if (found.condition.empty() && IsCondition(child)) found.condition = child.Name();
    }
    return found;
}

String StanzaError::Reason() const {
    if (condition.empty() && text.empty()) {
        return code == 0 ? String(u"no reason given") : Concat({u"error ", ToString(code)});
    }
    if (condition.empty() || text.empty() || condition == text) return condition.empty() ? text : condition;
    return Concat({condition, u" (", text, u")"});
}

}  // namespace quorix::console
