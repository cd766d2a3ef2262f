#include "quorix/im/RosterTable.h"

#include <utility>

#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

enum class EmptyGroups { Keep, Skip };

void AddGroups(const TextRules& rules, cRosterItem& item, const ParsedNode& element, EmptyGroups empty) {
    for (ParsedNode child = element.FirstElement(); child; child = child.NextElement()) {
        if (!child.Is(u"group")) continue;
        String name = child.Text();
        if (!name.empty() || empty == EmptyGroups::Keep) item.AddGroup(rules.Read(name));
    }
}

}  // namespace

void RosterIndex::Learn(Sequence sequence, const cRosterItem& item) {
    Ordered<String> learnt;
    learnt.emplace(item.JID(), sequence);
    byFoldedJid_[ToLower(item.JID())].merge(learnt);
}

void RosterIndex::Forget(Sequence sequence, const cRosterItem& item) {
    auto found = byFoldedJid_.find(ToLower(item.JID()));
    if (found == byFoldedJid_.end()) return;
    found->second.erase({item.JID(), sequence});
    if (found->second.empty()) byFoldedJid_.erase(found);
}

Sequence RosterIndex::Find(StringView jid) const {
    auto found = byFoldedJid_.find(ToLower(jid));
    return found == byFoldedJid_.end() ? 0 : FirstOf(found->second, String(jid));
}

std::int16_t RosterTable::FindRosterItem(StringView jid) const {
    Sequence found = GetIndex().Find(jid);
    return found ? ToInt16(IndexOf(found)) : std::int16_t{0};
}

void RosterTable::ParseRoster(const std::shared_ptr<SessionLink>& session, const PresenceTable& presences,
                              const Stanza& stanza) {
    if (!stanza.IsResult() && !stanza.IsSet()) return;
    if (!std::exchange(inProgress_, true)) session->Raise(&SessionEvents::OnRosterBegin);
    try {
        for (const ParsedNode& element : Outermost(stanza.root, u"item")) {
            std::shared_ptr<cRosterItem> item = Apply(session, element);
            String bareJid = session->Text().Read(ToLower(RemoveResource(item->JID())));
            session->Raise(&SessionEvents::OnRosterItem, item, presences.Primary(bareJid),
                           stanza.NodeOf(element));
        }
    } catch (const AutomationError&) {
        // A group named twice. The contacts behind it are lost, as the server's own list is in doubt.
    }
    inProgress_ = false;
    session->Raise(&SessionEvents::OnRosterEnd);
}

std::shared_ptr<cRosterItem> RosterTable::Apply(const std::shared_ptr<SessionLink>& session,
                                                const ParsedNode& element) {
    if (Sequence known = GetIndex().Find(element.Attribute(u"jid"))) {
        std::shared_ptr<cRosterItem> item = At(known);
        Update(session->Text(), *item, element);
        if (item->Subscription() == KV_Remove) Remove(IndexOf(known));
        return item;
    }
    auto item = std::make_shared<cRosterItem>();
    item->SetSession(session);
    Fill(session->Text(), *item, element);
    Add(item);
    return item;
}

void RosterTable::Fill(const TextRules& rules, cRosterItem& item, const ParsedNode& element) {
    item.JID(element.Attribute(u"jid"));
    String name = element.HasAttribute(u"name") ? element.Attribute(u"name") : ToLower(item.JID());
    item.NickName(rules.Read(name));
    ReadState(item, element);
    AddGroups(rules, item, element, EmptyGroups::Keep);
}

// A contact that stays keeps the name it is shown under, whatever the server says; one that goes takes the
// server's.
void RosterTable::Update(const TextRules& rules, cRosterItem& item, const ParsedNode& element) {
    ReadState(item, element);
    if (item.Subscription() == KV_Remove) item.NickName(rules.Read(element.Attribute(u"name")));
    if (!element.FirstChild()) return;
    item.RemoveAllGroups();
    AddGroups(rules, item, element, EmptyGroups::Skip);
}

void RosterTable::ReadState(cRosterItem& item, const ParsedNode& element) {
    if (element.HasAttribute(u"ask")) item.ask_ = element.Attribute(u"ask");
    item.Subscription(SubscriptionOf(element.Attribute(u"subscription")));
}

}  // namespace quorix
