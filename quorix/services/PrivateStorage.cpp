#include "quorix/services/PrivateStorage.h"

#include "quorix/base/AutomationError.h"
#include "quorix/link/StanzaText.h"
#include "quorix/xml/XmlName.h"

namespace quorix {

namespace {

StringView ElementNameOf(const TextRules& rules, StringView xmlns) {
    std::size_t colon = xmlns.find(u':');
    bool isName = colon != StringView::npos && IsXmlName(rules.ToBytes(xmlns.substr(0, colon)));
    if (!isName) throw AutomationError(ERR_InvalidCall);
    return xmlns.substr(0, colon);
}

}  // namespace

void StorePrivateData(SessionLink& link, StringView xmlns, StringView data) {
    String id = link.GetNextID();
    StringView name = ElementNameOf(link.Text(), xmlns);
    link.SendXML(
        Compose(link.Text(),
                {u"<iq type='set' id='", Quoted(id), u"'><query xmlns='jabber:iq:private'><", Markup(name),
                 u" xmlns='", Quoted(xmlns), u"'>", Markup(data), u"</", Markup(name), u"></query></iq>"}));
}

String getPrivateData(SessionLink& link, StringView xmlns) {
    link.GetNextID();
    ElementNameOf(link.Text(), xmlns);
    return {};
}

}  // namespace quorix
