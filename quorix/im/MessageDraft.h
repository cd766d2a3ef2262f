// A message that is being written: the values it consists of, for as long as these are all there is to it.
#pragma once

#include "quorix/base/String.h"
#include "quorix/base/TextRules.h"

namespace quorix {

// All values are as they were given.
struct MessageDraft {
    String id;
    String type;
    String to;
    String from;
    String body;                // text
    String subject;             // text
    bool subjectFirst = false;  // its element was made before that of the body

    // The text of the element, as the serializer would write it.
    String Xml(const TextRules& rules) const;
};

}  // namespace quorix
