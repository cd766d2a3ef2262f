#include "quorix/services/OutOfBand.h"

#include "quorix/link/StanzaText.h"

namespace quorix {

namespace {

String Offer(SessionLink& link, StringView type, StringView jid, StringView body) {
    return Compose(link.Text(), {u"<iq type='", Quoted(type), u"' from='", Quoted(link.MyJid()), u"' to='",
                                 Quoted(jid), u"' id='", Quoted(link.GetNextID()),
                                 u"'><query xmlns='jabber:iq:oob'>", Markup(body), u"</query></iq>"});
}

}  // namespace

void SendOOBRequest(SessionLink& link, StringView jid, StringView description, StringView url) {
    String body = Compose(link.Text(), {u"<desc>", Content(description, Put::Encoded), u"</desc><url>",
                                        Content(url, Put::Encoded), u"</url>"});
    link.SendXML(Offer(link, u"set", jid, body));
}

void SendOOBComplete(SessionLink& link, StringView jid) {
    link.SendXML(Offer(link, u"result", jid, u"<desc/><url/>"));
}

void HandleOob(SessionLink& link, const Stanza& stanza) {
    ParsedNode query = stanza.Query();
    if (stanza.IsSet()) {
        link.Raise(&SessionEvents::OnOOBRequest, stanza.From(), query.Child(u"desc").Text(),
                   query.Child(u"url").Text());
    } else if (stanza.IsResult() || stanza.IsError()) {
        link.Raise(&SessionEvents::OnOOBResult, stanza.From(), stanza.IsResult());
    }
}

}  // namespace quorix
