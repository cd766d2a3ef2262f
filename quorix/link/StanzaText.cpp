#include "quorix/link/StanzaText.h"

namespace quorix {

StanzaPart Markup(StringView xml) {
    StanzaPart part(xml);
    part.isMarkup_ = true;
    return part;
}

StanzaPart ValueIn(Place place, StringView value, Put put) {
    StanzaPart part(value);
    part.place_ = place;
    part.put_ = put;
    return part;
}

String Compose(const TextRules& rules, std::initializer_list<StanzaPart> parts) {
    std::size_t size = 0;
    for (const StanzaPart& part : parts) size += part.Size();
    String xml;
    xml.reserve(size + size / 8);  // references and encoded characters are longer than what they stand for
    Extend(xml, rules, parts);
    return xml;
}

void Extend(String& xml, const TextRules& rules, std::initializer_list<StanzaPart> parts) {
    for (const StanzaPart& part : parts) part.AppendTo(xml, rules);
}

}  // namespace quorix
