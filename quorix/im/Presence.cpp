#include "quorix/im/Presence.h"

#include <array>

#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/link/StanzaText.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

struct PresenceType {
    StringView name;
    bool addressedAlways;  // even to nobody
};

constexpr std::array<PresenceType, 7> kTypes = {{
    {u"available", false},
    {u"unavailable", false},
    {u"subscribe", false},
    {u"unsubscribe", true},
    {u"subscribed", true},
    {u"unsubscribed", true},
    {u"invisible", false},
}};

void AddressTo(String& xml, const TextRules& rules, StringView jid, const PresenceType& type) {
    bool isAddressed = type.addressedAlways || !jid.empty();
    if (isAddressed) Extend(xml, rules, {u" to=\"", DoubleQuoted(jid, Put::Held), u"\""});
    Extend(xml, rules, {u" type=\"", Markup(type.name), u"\""});
}

void AppendStatus(String& xml, const TextRules& rules, StringView status) {
    if (status.empty()) return void(xml += u"<status/>");
    Extend(xml, rules, {u"<status>", Content(status, Put::Text), u"</status>"});
}

std::int32_t ShowOf(StringView text, std::int32_t otherwise) {
    for (std::int32_t show = KV_None; show <= KV_DND; ++show) {
        if (text == ShowText(show)) return show;
    }
    return otherwise;
}

void Read(const TextRules& rules, cPresenceItem& item, const ParsedNode& stanza) {
    item.Status(rules.Read(FindTagBelow(stanza, u"status").Text()));
    item.Priority(WireInt16(FindTagBelow(stanza, u"priority").Text()));
    item.ShowType(static_cast<eShowType>(ShowOf(FindTagBelow(stanza, u"show").Text(), item.ShowType())));
}

// One presence on its way into the table. `bareJid` is wire text, as agents and contacts keep theirs.
struct Arrival {
    const std::shared_ptr<SessionLink>& session;
    PresenceTable& table;
    const Stanza& stanza;
    String bareJid;
    std::shared_ptr<cPresenceItem> item;
    bool isNew = true;

    void RaisePresence(bool available, eItemType kind) const {
        session->Raise(&SessionEvents::OnPresence, item, available, ToString(item->ShowType()), kind,
                       stanza.Node());
    }
};

void Appear(const Arrival& arrival) {
    eItemType kind = arrival.session->FindItemType(arrival.bareJid);
    if (kind != KV_GroupChatItem && arrival.isNew) arrival.table.Add(arrival.item);
    arrival.RaisePresence(true, kind);
}

void Forget(PresenceTable& table, const cPresenceItem& item) {
    std::int32_t index = table.FindPresence(item.JID(), item.Resource(), true);
    if (index > 0) table.Remove(index);
}

void Disappear(const Arrival& arrival) {
    eItemType kind = arrival.session->FindItemType(arrival.bareJid);
    bool isRoom = kind == KV_GroupChatItem;
    if (isRoom && arrival.session->LeaveRoom(arrival.bareJid, GetResource(arrival.stanza.From()))) return;
    if (!isRoom) Forget(arrival.table, *arrival.item);
    arrival.RaisePresence(false, kind);
}

void RaiseSubscription(SessionLink& session, StringView type, const cPresenceItem& item) {
    using Events = SessionEvents;
    const String jid = item.JID();
    const String status = item.Status();
    if (type == u"subscribe") session.Raise(&Events::OnSubscriptionRequest, jid, KV_Subscribe, status);
    if (type == u"unsubscribe") session.Raise(&Events::OnSubscriptionRequest, jid, KV_UnSubscribe, status);
    if (type == u"subscribed") session.Raise(&Events::OnSubscriptionAccept, jid, status);
    if (type == u"unsubscribed") session.Raise(&Events::OnSubscriptionDenied, jid, status);
}

}  // namespace

void SendMyPresence(SessionLink& session, StringView status, std::int32_t show, std::int16_t priority) {
    const TextRules& rules = session.Text();
    String xml = u"<presence>";
    if (!status.empty()) Extend(xml, rules, {u"<status>", Content(status, Put::Escaped), u"</status>"});
    StringView showText = ShowText(show);
    if (!showText.empty()) Extend(xml, rules, {u"<show>", Content(showText), u"</show>"});
    Extend(xml, rules, {u"<priority>", Content(ToString(priority)), u"</priority></presence>"});
    session.SendXML(xml);
}

void SendPresence(SessionLink& session, StringView jid, std::int32_t subType, StringView status) {
    const TextRules& rules = session.Text();
    String xml = u"<presence";
    bool isKnown = subType >= KV_Available && subType <= KV_Invisible;
    if (isKnown) AddressTo(xml, rules, jid, kTypes[static_cast<std::size_t>(subType)]);
    xml += u">";
    AppendStatus(xml, rules, status);
    session.SendXML(xml += u"</presence>");
    session.LetOthersRun();
}

void HandlePresence(const std::shared_ptr<SessionLink>& session, PresenceTable& table, const Stanza& stanza) {
    const TextRules& rules = session->Text();
    const StringView type = Trim(stanza.type);
    const bool isAvailable = type.empty() || type == u"available";
    const bool isUnavailable = type == u"unavailable";
    const String from = stanza.From();
    const String bareJid = ToLower(RemoveResource(from));
    const String resource = GetResource(from);

    // A presence from a bare address finds the contact's primary entry, and takes it over on purpose: such a
    // sender has one presence, whatever it called its resource before. Presences about subscriptions and
    // errors tell nothing about availability, so they get an item of their own.
    std::int32_t index = table.FindPresence(rules.Read(bareJid), rules.Read(resource), true);
    bool isKnown = index > 0 && (isAvailable || isUnavailable);
    auto item = isKnown ? table.Item(index) : std::make_shared<cPresenceItem>();

    item->SetSession(session);
    item->JID(bareJid);
    item->Resource(resource);
    Read(rules, *item, stanza.root);

    const Arrival arrival{session, table, stanza, bareJid, item, !isKnown};
    if (isAvailable) return Appear(arrival);
    if (isUnavailable) return Disappear(arrival);
    RaiseSubscription(*session, type, *item);
}

void ParsePresenceList(const std::shared_ptr<SessionLink>& session, const Stanza& stanza) {
    session->Raise(&SessionEvents::OnWhoisOnlineStart);
    for (const ParsedNode& presence : Outermost(stanza.root, u"presence")) {
        auto item = std::make_shared<cPresenceItem>();
        item->SetSession(session);
        item->JID(presence.Attribute(u"from"));
        item->Status(session->Text().Read(presence.Child(u"status").Text()));
        session->Raise(&SessionEvents::OnWhoisOnlineUser, item);
    }
    session->Raise(&SessionEvents::OnWhoisOnlineEnd);
}

}  // namespace quorix
