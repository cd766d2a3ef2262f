// The shape that most requests and answers of the services share.
#pragma once

#include "quorix/link/SessionLink.h"

namespace quorix {

// `<iq type= id= to=><query xmlns=>body</query></iq>`, the body being XML.
String Query(const TextRules& rules, StringView type, StringView id, StringView jid, StringView xmlns,
             StringView body = {});

// `<name>text</name>`. The name is ours, or has been checked.
String Element(const TextRules& rules, StringView name, StringView text, Put put = Put::Raw);

}  // namespace quorix
