#include "quorix/im/Messages.h"

#include "quorix/im/Roster.h"
#include "quorix/link/StanzaError.h"
#include "quorix/link/StanzaText.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

void RaiseMessage(const std::shared_ptr<SessionLink>& session, const Stanza& stanza) {
    auto message = std::make_shared<cMessage>(session, stanza.Node());
    session->Raise(&SessionEvents::OnMessage, message);
    std::uint32_t events = message->Events();
    if (events == 0) return;
    const bool noBody = !message->HasBody();
    for (eEvent event : {KV_Composing, KV_Delivered, KV_Displayed, KV_Offline}) {
        if ((events & BitOf(event)) == 0) continue;
        session->Raise(&SessionEvents::OnMessageEvent, noBody, event, message->FromJid());
        events = message->Events();  // a handler may have changed the message
    }
}

StringView ReportElement(eEvent event) {
    switch (event) {
        case KV_Composing: return u"<composing/>";
        case KV_Displayed: return u"<displayed/>";
        case KV_Delivered: return u"<delivered/>";
        default: return {};
    }
}

}  // namespace

void HandleMessage(const std::shared_ptr<SessionLink>& session, const Stanza& stanza) {
    if (stanza.IsError()) {
        StanzaError error = session->ErrorOf(stanza);
        session->Raise(&SessionEvents::OnError, stanza.Node(), stanza.From(), error.code, error.text);
    } else if (FindExtension(stanza.root, u"jabber:x:roster")) {
        ParseReceiveRoster(*session, *stanza.Node());
    } else if (ParsedNode invitation = FindExtension(stanza.root, u"jabber:x:conference")) {
        session->Raise(&SessionEvents::OnGCInvite10, invitation.Attribute(u"jid"), stanza.From(),
                       stanza.ChildText(u"body"), stanza.ChildText(u"subject"), stanza.Node());
    } else {
        RaiseMessage(session, stanza);
    }
}

void SendEvent(SessionLink& session, StringView jid, eEvent event, StringView id, bool cancel) {
    const TextRules& rules = session.Text();
    String xml = Compose(rules, {u"<message to='", Quoted(jid), u"'><x xmlns='jabber:x:event'>",
                                 Markup(cancel ? StringView() : ReportElement(event))});
    if (!id.empty()) Extend(xml, rules, {u"<id>", Content(id), u"</id>"});
    session.SendXML(xml += u"</x></message>");
}

}  // namespace quorix
