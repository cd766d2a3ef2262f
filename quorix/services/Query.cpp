#include "quorix/services/Query.h"

namespace quorix {

String Query(StringView type, StringView id, StringView jid, StringView xmlns, StringView body) {
    return Concat({u"<iq type='", type, u"' id='", id, u"' to='", jid, u"'><query xmlns='", xmlns, u"'>",
                   body, u"</query></iq>"});
}

String Element(StringView name, StringView text) {
    return Concat({u"<", name, u">", text, u"</", name, u">"});
}

}  // namespace quorix
