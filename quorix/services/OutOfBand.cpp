#include "quorix/services/OutOfBand.h"

#include "quorix/base/modUTF_8.h"
#include "quorix/services/Query.h"

namespace quorix {

namespace {

String Offer(SessionLink& link, StringView type, StringView jid, StringView body) {
    return Concat({u"<iq type='", type, u"' from='", link.MyJid(), u"' to='", jid, u"' id='",
                   link.GetNextID(), u"'><query xmlns='jabber:iq:oob'>", body, u"</query></iq>"});
}

}  // namespace

void SendOOBRequest(SessionLink& link, StringView jid, StringView description, StringView url) {
    String body = Element(u"desc", EncodeUTF8(description, false)) + Element(u"url", EncodeUTF8(url, false));
    link.SendXML(Offer(link, u"set", jid, body));
}

void SendOOBComplete(SessionLink& link, StringView jid) {
    link.SendXML(Offer(link, u"result", jid, u"<desc/><url/>"));
}

void HandleOob(SessionLink& link, const Stanza& stanza) {
    XmlNode query = stanza.Query();
    if (stanza.IsSet()) {
        link.Raise(&SessionEvents::OnOOBRequest, stanza.from, query.Child(u"desc").Text(),
                   query.Child(u"url").Text());
    } else if (stanza.IsResult() || stanza.IsError()) {
        link.Raise(&SessionEvents::OnOOBResult, stanza.from, stanza.IsResult());
    }
}

}  // namespace quorix
