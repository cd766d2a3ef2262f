// The shape that most requests and answers of the services share.
#pragma once

#include "quorix/base/String.h"

namespace quorix {

// `<iq type= id= to=><query xmlns=>body</query></iq>`. Everything is inserted as given.
String Query(StringView type, StringView id, StringView jid, StringView xmlns, StringView body = {});

// `<name>text</name>`, inserted as given.
String Element(StringView name, StringView text);

}  // namespace quorix
