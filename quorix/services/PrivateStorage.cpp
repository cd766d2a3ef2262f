#include "quorix/services/PrivateStorage.h"

#include "quorix/base/AutomationError.h"

namespace quorix {

namespace {

StringView ElementNameOf(StringView xmlns) {
    std::size_t colon = xmlns.find(u':');
    if (colon == StringView::npos) throw AutomationError(ERR_InvalidCall);
    return xmlns.substr(0, colon);
}

}  // namespace

void StorePrivateData(SessionLink& link, StringView xmlns, StringView data) {
    String id = link.GetNextID();
    StringView name = ElementNameOf(xmlns);
    link.SendXML(Concat({u"<iq type='set' id='", id, u"'><query xmlns='jabber:iq:private'><", name,
                         u" xmlns='", xmlns, u"'>", data, u"</", name, u"></query></iq>"}));
}

String getPrivateData(SessionLink& link, StringView xmlns) {
    link.GetNextID();
    ElementNameOf(xmlns);
    return {};
}

}  // namespace quorix
