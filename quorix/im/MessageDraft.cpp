#include "quorix/im/MessageDraft.h"

#include "quorix/link/StanzaText.h"

namespace quorix {

namespace {

constexpr std::size_t kMarkup = 100;  // what the tags take at most

StanzaPart Attribute(StringView value) { return DoubleQuoted(value, Put::Held); }

void AppendBody(String& xml, const TextRules& rules, StringView body) {
    if (!body.empty()) Extend(xml, rules, {u"<body>", Content(body, Put::Text), u"</body>"});
}

void AppendSubject(String& xml, const TextRules& rules, StringView subject) {
    if (!subject.empty()) Extend(xml, rules, {u"<subject>", Content(subject, Put::Text), u"</subject>"});
}

}  // namespace

String MessageDraft::Xml(const TextRules& rules) const {
    const std::size_t values =
        id.size() + type.size() + to.size() + from.size() + body.size() + subject.size();
    String xml;
    xml.reserve(values + values / 8 + kMarkup);
    Extend(xml, rules,
           {u"<message id=\"", Attribute(id), u"\" type=\"", Attribute(type), u"\" to=\"", Attribute(to),
            u"\" from=\"", Attribute(from), u"\""});
    if (body.empty() && subject.empty()) return xml += u"/>";
    xml += u">";
    if (subjectFirst) AppendSubject(xml, rules, subject);
    AppendBody(xml, rules, body);
    if (!subjectFirst) AppendSubject(xml, rules, subject);
    return xml += u"</message>";
}

}  // namespace quorix
