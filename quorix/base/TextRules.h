// How values become part of the stream's text, and back: one manner for each mode of a session.
//
// The classic manner carries wire text: whoever sends a value says how it is put, and whoever reads one
// decodes it. The modern manner carries text throughout: a value is escaped for its place on the way out,
// which the parser undoes on the way in, and the stream as a whole is UTF-8.
//
// In both, a value never breaks out of its place, but for Put::Own in the classic manner.
#pragma once

#include <string>

#include "quorix/base/String.h"
#include "quorix/base/XmlText.h"

namespace quorix {

// How the classic manner puts a value; the modern one needs no telling. What the codec gives up is put as it
// would be without the codec.
enum class Put {
    Own,      // as it is, whatever becomes of the stanza: the account's own name and passwords
    Raw,      // as it is, as far as it can stand in its place
    Encoded,  // through EncodeUTF8, as far as that can stand in its place
    Escaped,  // through EncodeUTF8 with escaping
    Held,     // as the serializer writes a node that holds it
    Text,     // as the serializer writes a node that holds it by ToNode
};

class TextRules {
public:
    virtual ~TextRules() = default;

    // Appends `value` to the text of a stanza. Every sender puts every value by this.
    virtual void Append(String& xml, StringView value, Put put, Place place) const = 0;

    // A text as a node of a stanza holds it: without what XML cannot hold.
    virtual String ToNode(StringView text) const = 0;

    // A value as received, from a node, as text.
    virtual String Read(String received) const = 0;

    // The text of the stream as its bytes. Text that has no byte or no UTF-8 becomes "?" or U+FFFD.
    virtual std::string ToBytes(StringView xml) const = 0;
};

const TextRules& ClassicText();
const TextRules& ModernText();

}  // namespace quorix
