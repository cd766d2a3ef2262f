#include "apps/console/ContactDesk.h"

#include "apps/console/Console.h"

namespace quorix::console {

namespace {

String Names(const Collection<String>& groups) {
    String names;
    for (const String& group : groups) names += Concat({u" [", group, u"]"});
    return names;
}

String Joined(const Collection<String>& groups) {
    String names;
    for (const String& group : groups) names += Concat({names.empty() ? u"" : u"; ", group});
    return names;
}

std::string_view Name(eSubscriptionType subscription) {
    switch (subscription) {
        case KV_To: return "to";
        case KV_From: return "from";
        case KV_Both: return "both";
        case KV_Remove: return "remove";
        default: return "none";
    }
}

StringView Sight(eSubscriptionType subscription) {
    switch (subscription) {
        case KV_To: return u", does not see you";
        case KV_From: return u", not seen by you";
        case KV_Both: return u"";
        case KV_Remove: return u", removed";
        default: return u", not subscribed";
    }
}

}  // namespace

StringView Mood(const cPresenceItem& item) {
    const StringView show = ShowText(item.ShowType());
    return show.empty() ? StringView(u"online") : show;
}

// -- Presence --

void ContactDesk::OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                             StringView /*ShowType*/, std::int32_t /*ItemType*/,
                             const NodePtr& /*XMLElement*/) {
    const String jid = PresenceItem->JID();
    const String resource = PresenceItem->Resource();
    if (bAvailable && Owner().Rooms().HasJoined(jid, resource)) return;
    Show("presence", {{"_who", resource.empty() ? jid : Concat({jid, u"/", resource})},
                      {"jid", jid},
                      {"resource", resource},
                      {"show", bAvailable ? Mood(*PresenceItem) : StringView(u"offline")},
                      {"status", PresenceItem->Status()},
                      {"available", bAvailable},
                      {"priority", std::int64_t{PresenceItem->Priority()}}});
}

void ContactDesk::OnSubscriptionRequest(StringView FromJid, std::int32_t SubType, StringView Status) {
    if (SubType == KV_UnSubscribe) return Show("subscription-ended", {{"jid", FromJid}});
    Show("subscription-request", {{"jid", FromJid}, {"text", Status}});
}

void ContactDesk::OnSubscriptionAccept(StringView FromJid, StringView Status) {
    Show("subscription-accepted", {{"jid", FromJid}, {"text", Status}});
}

void ContactDesk::OnSubscriptionDenied(StringView FromJid, StringView Status) {
    Show("subscription-denied", {{"jid", FromJid}, {"text", Status}});
}

// -- Contacts --

void ContactDesk::Fetch(bool listed) {
    countsOnly_ = !listed;
    Session().FetchRoster();
}

// The table keeps the name that it knows; here the name is what the server says.
void ContactDesk::OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                               const std::shared_ptr<cPresenceItem>& PresenceItem,
                               const NodePtr& XMLElement) {
    const String name = Text(XMLElement->Root().Attribute(u"name"));
    if (!name.empty()) RosterItem->NickName(name);
    if (countsOnly_) return;
    const bool isAsked = RosterItem->Ask() == u"subscribe" && XMLElement->Root().HasAttribute(u"ask");
    Show("contact", {{"jid", Text(RosterItem->JID())},
                     {"name", RosterItem->NickName()},
                     {"_mark", PresenceItem ? u"+" : u"-"},
                     {"show", PresenceItem ? Mood(*PresenceItem) : StringView(u"offline")},
                     {"_groups", Names(RosterItem->Groups())},
                     {"_sight", Concat({Sight(RosterItem->Subscription()), isAsked ? u", asked" : u""})},
                     {"groups", Joined(RosterItem->Groups())},
                     {"subscription", std::string(Name(RosterItem->Subscription()))},
                     {"asked", isAsked}});
}

void ContactDesk::OnRosterEnd() {
    if (std::exchange(countsOnly_, false))
        Show("contacts", {{"count", std::int64_t{Session().Roster().Count()}}});
}

void ContactDesk::OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& RosterItem, StringView FromJid) {
    Show("contact-received",
         {{"from", Text(FromJid)}, {"jid", Text(RosterItem->JID())}, {"name", Text(RosterItem->NickName())}});
}

}  // namespace quorix::console
