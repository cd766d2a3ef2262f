#include "apps/console/ChatDesk.h"

#include "apps/console/Console.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

String Names(const Collection<String>& groups) {
    String names;
    for (const String& group : groups) names += Concat({u" [", group, u"]"});
    return names;
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
    StringView show = ShowText(item.ShowType());
    return show.empty() ? StringView(u"online") : show;
}

cSession& ChatDesk::Session() { return console_.Session(); }
void ChatDesk::Print(std::initializer_list<StringView> parts) { console_.Print(Concat(parts)); }

// -- Messages --

void ChatDesk::OnMessage(const std::shared_ptr<cMessage>& Message) {
    const String from = Message->FromJid();
    const String sender = Readable(from);
    if (Message->Body().empty()) {
        bool reports = Message->getEvent(KV_Composing);
        if (typing_.erase(from) > 0 && !reports) Print({u"* ", sender, u" has stopped typing"});
        return;
    }
    typing_.erase(from);
    last_[from] = Message;
    if (!Message->Stamp().empty()) Print({u"(sent at ", Message->Stamp(), u")"});
    Print({sender, u": ", Message->Body()});
    if (!Message->XHTML().empty()) Print({u"  as markup: ", Message->XHTML()});
    if (!Message->URL().empty())
        Print({u"  link: ", Readable(Message->URL()), u" ", Readable(Message->desc())});
    if (Message->HasCC()) Print({u"  with copies to others"});
}

// A message with text asks for reports, one without is a report.
void ChatDesk::OnMessageEvent(bool NoBody, std::int32_t EventKind, StringView FromJid) {
    if (NoBody) return ShowReport(EventKind, FromJid);
    auto asked = last_.find(String(FromJid));
    if (EventKind != KV_Displayed || asked == last_.end()) return;
    Session().SendEvent(FromJid, KV_Displayed, asked->second->ID());
}

void ChatDesk::ShowReport(std::int32_t eventKind, StringView fromJid) {
    const String sender = Readable(fromJid);
    if (eventKind == KV_Composing && typing_.insert(String(fromJid)).second)
        Print({u"* ", sender, u" is typing"});
    if (eventKind == KV_Displayed) Print({u"* ", sender, u" has seen your message"});
    if (eventKind == KV_Delivered) Print({u"* your message has reached ", sender});
    if (eventKind == KV_Offline) Print({u"* your message waits for ", sender});
}

void ChatDesk::Typing(StringView jid, bool stopped) {
    for (const auto& [sender, message] : last_) {
        bool isMeant = sender == jid || RemoveResource(sender) == ToLower(jid);
        if (isMeant) Session().SendEvent(sender, KV_Composing, message->ID(), stopped);
    }
}

// -- Presence --

void ChatDesk::OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                          StringView /*ShowType*/, std::int32_t /*ItemType*/, const NodePtr& /*XMLElement*/) {
    Print({u"* ", PresenceItem->JID(), u"/", PresenceItem->Resource(), u" is ",
           bAvailable ? Mood(*PresenceItem) : StringView(u"offline"), u" ", PresenceItem->Status()});
}

void ChatDesk::OnSubscriptionRequest(StringView FromJid, std::int32_t SubType, StringView Status) {
    if (SubType == KV_UnSubscribe) return Print({u"* ", FromJid, u" no longer wants to see you"});
    Print({u"* ", FromJid, u" wants to see you: ", Status, u" (/accept ", FromJid, u" or /deny ", FromJid,
           u")"});
}

void ChatDesk::OnSubscriptionAccept(StringView FromJid, StringView Status) {
    Print({u"* ", FromJid, u" lets you see when it is there ", Status});
}

void ChatDesk::OnSubscriptionDenied(StringView FromJid, StringView Status) {
    Print({u"* ", FromJid, u" does not let you see when it is there ", Status});
}

// -- Contacts --

// The table keeps the name that it knows; here the name is what the server says.
void ChatDesk::OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                            const std::shared_ptr<cPresenceItem>& PresenceItem, const NodePtr& XMLElement) {
    String name = Session().Convert2Unicode(XMLElement->Root().Attribute(u"name"));
    if (!name.empty()) RosterItem->NickName(name);
    bool isAsked = RosterItem->Ask() == u"subscribe" && XMLElement->Root().HasAttribute(u"ask");
    Print({PresenceItem ? u"+ " : u"- ", RosterItem->NickName(), u" <", Readable(RosterItem->JID()), u"> ",
           PresenceItem ? Mood(*PresenceItem) : StringView(u"offline"), Names(RosterItem->Groups()),
           Sight(RosterItem->Subscription()), isAsked ? u", asked" : u""});
}

void ChatDesk::OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& RosterItem, StringView FromJid) {
    const String jid = Readable(RosterItem->JID());
    const String name = Session().Convert2Unicode(RosterItem->NickName());
    Print({u"* ", Readable(FromJid), u" sends you a contact: /add ", jid, u" ", name});
}

}  // namespace quorix::console
