// Why a server or a peer has refused something.
#pragma once

#include "quorix/xml/XmlNode.h"

namespace quorix::console {

// The code and the text of a stanza's error (0 and "" when absent), and its condition: the name of the
// element that says what is wrong ("item-not-found").
struct StanzaError {
    static StanzaError Of(const XmlNode& stanza);

    // The condition and the text, or whatever of both there is; else the code.
    String Reason() const;

    int code = 0;
    String condition;
    String text;
};

}  // namespace quorix::console
