// The text of a stanza, joined from its markup and the values in it.
//
//     Compose(link.Text(), {u"<message to='", Quoted(jid), u"'><id>", Content(id), u"</id></message>"})
//
// Only literals are markup by themselves, so that no value gets between them without its rule.
#pragma once

#include <initializer_list>

#include "quorix/base/TextRules.h"

namespace quorix {

class StanzaPart {
public:
    template <std::size_t N>
    consteval StanzaPart(const char16_t (&literal)[N])  // NOLINT(google-explicit-constructor): see above
        : text_(literal, N - 1), isMarkup_(true) {}

    void AppendTo(String& xml, const TextRules& rules) const {
        isMarkup_ ? void(xml.append(text_)) : rules.Append(xml, text_, put_, place_);
    }
    std::size_t Size() const { return text_.size(); }

private:
    friend StanzaPart Markup(StringView xml);
    friend StanzaPart ValueIn(Place place, StringView value, Put put);

    explicit StanzaPart(StringView text) : text_(text) {}

    StringView text_;
    Put put_ = Put::Raw;
    Place place_ = Place::Content;
    bool isMarkup_ = false;
};

// XML that is inserted as it is: our own, or what an application gives as XML.
StanzaPart Markup(StringView xml);

// A value between tags, inside single quotes, and inside double quotes.
StanzaPart ValueIn(Place place, StringView value, Put put);
inline StanzaPart Content(StringView value, Put put = Put::Raw) {
    return ValueIn(Place::Content, value, put);
}
inline StanzaPart Quoted(StringView value, Put put = Put::Raw) {
    return ValueIn(Place::SingleQuotes, value, put);
}
inline StanzaPart DoubleQuoted(StringView value, Put put = Put::Raw) {
    return ValueIn(Place::DoubleQuotes, value, put);
}

// All parts in one text, in most cases with one allocation.
String Compose(const TextRules& rules, std::initializer_list<StanzaPart> parts);

// The same behind what `xml` holds already.
void Extend(String& xml, const TextRules& rules, std::initializer_list<StanzaPart> parts);

}  // namespace quorix
