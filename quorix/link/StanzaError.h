// What a stanza of type "error" says went wrong.
#pragma once

#include "quorix/link/Stanza.h"

namespace quorix {

struct StanzaError {
    std::int16_t code = 0;
    String text;
};

// The error's own number and text, 0 and "" without.
StanzaError ErrorAsSent(const Stanza& stanza);

// The same; what is missing comes from the condition (RFC 6120 section 8.3): the number that stood for it
// once (XEP-0086), and its name.
StanzaError ErrorByCondition(const Stanza& stanza);

}  // namespace quorix
