#include "quorix/services/Information.h"

#include "quorix/base/Number.h"
#include "quorix/link/StanzaText.h"
#include "quorix/services/Query.h"

namespace quorix {

namespace {

constexpr StringView kVersion = u"jabber:iq:version";
constexpr StringView kTime = u"jabber:iq:time";
constexpr StringView kLast = u"jabber:iq:last";

void Ask(SessionLink& link, StringView jid, StringView xmlns) {
    link.SendXML(Query(link.Text(), u"get", link.GetNextID(), jid, xmlns));
}

void Answer(SessionLink& link, StringView jid, StringView xmlns, StringView body) {
    link.SendXML(Query(link.Text(), u"result", link.GetNextID(), jid, xmlns, body));
}

}  // namespace

void SendVersionRequest(SessionLink& link, StringView jid) { Ask(link, jid, kVersion); }
void SendTimeRequest(SessionLink& link, StringView jid) { Ask(link, jid, kTime); }
void SendLastSeenRequest(SessionLink& link, StringView jid) { Ask(link, jid, kLast); }

void SendVersionResponse(SessionLink& link, StringView jid, StringView name, StringView version,
                         StringView os) {
    Answer(link, jid, kVersion,
           Compose(link.Text(), {u"<name>", Content(name), u"</name><version>", Content(version),
                                 u"</version><os>", Content(os), u"</os>"}));
}

void SendTimeResponse(SessionLink& link, StringView jid, StringView utc, StringView timeZone,
                      StringView display) {
    Answer(link, jid, kTime,
           Compose(link.Text(), {u"<utc>", Content(utc), u"</utc><tz>", Content(timeZone), u"</tz><display>",
                                 Content(display), u"</display>"}));
}

void SendGetLastResponse(SessionLink& link, StringView jid, StringView seconds) {
    link.SendXML(
        Compose(link.Text(), {u"<iq type='result' id='", Quoted(link.GetNextID()), u"' to='", Quoted(jid),
                              u"'><query xmlns='jabber:iq:last' seconds='", Quoted(seconds), u"'/></iq>"}));
}

void HandleVersion(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnVersionRequest, stanza.From(), stanza.Id());
    if (!stanza.IsResult()) return;
    ParsedNode query = stanza.Query();
    link.Raise(&SessionEvents::OnVersionResult, stanza.From(), query.Child(u"name").Text(),
               query.Child(u"version").Text(), query.Child(u"os").Text());
}

void HandleTime(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnTimeRequest, stanza.From(), stanza.Id());
    if (!stanza.IsResult()) return;
    ParsedNode query = stanza.Query();
    link.Raise(&SessionEvents::OnTimeResult, stanza.From(), query.Child(u"utc").Text(),
               query.Child(u"display").Text());
}

void HandleLast(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnGetLastRequest, stanza.From(), stanza.Id());
    if (!stanza.IsResult()) return;
    std::int32_t seconds = WireInt32(stanza.Query().Attribute(u"seconds"));
    link.Raise(&SessionEvents::OnLastSeenResult, stanza.Node(), stanza.From(), seconds);
}

}  // namespace quorix
