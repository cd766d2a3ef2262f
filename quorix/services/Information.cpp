#include "quorix/services/Information.h"

#include "quorix/base/Number.h"
#include "quorix/services/Query.h"

namespace quorix {

namespace {

constexpr StringView kVersion = u"jabber:iq:version";
constexpr StringView kTime = u"jabber:iq:time";
constexpr StringView kLast = u"jabber:iq:last";

void Ask(SessionLink& link, StringView jid, StringView xmlns) {
    link.SendXML(Query(u"get", link.GetNextID(), jid, xmlns));
}

void Answer(SessionLink& link, StringView jid, StringView xmlns, StringView body) {
    link.SendXML(Query(u"result", link.GetNextID(), jid, xmlns, body));
}

}  // namespace

void SendVersionRequest(SessionLink& link, StringView jid) { Ask(link, jid, kVersion); }
void SendTimeRequest(SessionLink& link, StringView jid) { Ask(link, jid, kTime); }
void SendLastSeenRequest(SessionLink& link, StringView jid) { Ask(link, jid, kLast); }

void SendVersionResponse(SessionLink& link, StringView jid, StringView name, StringView version,
                         StringView os) {
    Answer(link, jid, kVersion,
           Concat({Element(u"name", name), Element(u"version", version), Element(u"os", os)}));
}

void SendTimeResponse(SessionLink& link, StringView jid, StringView utc, StringView timeZone,
                      StringView display) {
    Answer(link, jid, kTime,
           Concat({Element(u"utc", utc), Element(u"tz", timeZone), Element(u"display", display)}));
}

void SendGetLastResponse(SessionLink& link, StringView jid, StringView seconds) {
    link.SendXML(Concat({u"<iq type='result' id='", link.GetNextID(), u"' to='", jid, u"'><query xmlns='",
                         kLast, u"' seconds='", seconds, u"'/></iq>"}));
}

void HandleVersion(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnVersionRequest, stanza.from, stanza.id);
    if (!stanza.IsResult()) return;
    XmlNode query = stanza.Query();
    link.Raise(&SessionEvents::OnVersionResult, stanza.from, query.Child(u"name").Text(),
               query.Child(u"version").Text(), query.Child(u"os").Text());
}

void HandleTime(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnTimeRequest, stanza.from, stanza.id);
    if (!stanza.IsResult()) return;
    XmlNode query = stanza.Query();
    link.Raise(&SessionEvents::OnTimeResult, stanza.from, query.Child(u"utc").Text(),
               query.Child(u"display").Text());
}

void HandleLast(SessionLink& link, const Stanza& stanza) {
    if (stanza.IsGet()) link.Raise(&SessionEvents::OnGetLastRequest, stanza.from, stanza.id);
    if (!stanza.IsResult()) return;
    std::int32_t seconds = WireInt32(stanza.Query().Attribute(u"seconds"));
    link.Raise(&SessionEvents::OnLastSeenResult, stanza.node, stanza.from, seconds);
}

}  // namespace quorix
