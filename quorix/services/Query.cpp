#include "quorix/services/Query.h"

#include "quorix/link/StanzaText.h"

namespace quorix {

String Query(const TextRules& rules, StringView type, StringView id, StringView jid, StringView xmlns,
             StringView body) {
    return Compose(rules, {u"<iq type='", Quoted(type), u"' id='", Quoted(id), u"' to='", Quoted(jid),
                           u"'><query xmlns='", Quoted(xmlns), u"'>", Markup(body), u"</query></iq>"});
}

String Element(const TextRules& rules, StringView name, StringView text, Put put) {
    return Compose(rules, {u"<", Markup(name), u">", Content(text, put), u"</", Markup(name), u">"});
}

}  // namespace quorix
