#include "quorix/im/RosterTable.h"

#include <algorithm>
#include <set>
#include <utility>

#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/im/PresenceTable.h"
#include "quorix/im/RecordIndex.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"
#include "quorix/xml/Finding.h"

namespace quorix {

class RosterIndex {
public:
    void Learn(Sequence sequence, const cRosterItem& item);
    void Forget(Sequence sequence, const cRosterItem& item);

    // The first entry of exactly this address, 0 when there is none.
    Sequence Find(StringView jid) const;
    bool ContainsIgnoringCase(StringView jid) const;

private:
    struct Entry {
        std::size_t hash;  // of the address, ASCII case aside
        Sequence sequence;
        const cRosterItem* item;
    };
    struct Key {
        Key(StringView jid, Sequence sequence);
        Key(const Entry& entry);  // NOLINT(google-explicit-constructor): what an entry is found by
        std::size_t hash;
        Sequence sequence;
        StringView jid;
    };
    // By hash, so that few comparisons read an address. Those that are one but for their case stand together,
    // upper case first.
    struct Order {
        using is_transparent = void;
        bool operator()(const Key& left, const Key& right) const;
    };
    // The addresses themselves stand in the records alone.
    std::set<Entry, Order> byJid_;
};

// The group lists of all contacts, each once.
class GroupLists {
public:
    // The list that holds the same groups as `list` in the same order.
    GroupListPtr Shared(const GroupListPtr& list);

private:
    struct ByGroups {
        bool operator()(const GroupListPtr& left, const GroupListPtr& right) const;
    };
    std::set<GroupListPtr, ByGroups> lists_;
    std::size_t enough_ = 100;  // when some may be nobody's any more
};

template class Collection<std::shared_ptr<cRosterItem>>;
template class RecordTable<cRosterItem, RosterIndex>;

RosterTable::RosterTable() : groupLists_(std::make_unique<GroupLists>()) {}
RosterTable::~RosterTable() = default;

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

RosterIndex::Key::Key(StringView theJid, Sequence theSequence)
    : hash(std::hash<String>()(ToLower(theJid))), sequence(theSequence), jid(theJid) {}

RosterIndex::Key::Key(const Entry& entry)
    : hash(entry.hash), sequence(entry.sequence), jid(entry.item->jid_.View()) {}

bool RosterIndex::Order::operator()(const Key& left, const Key& right) const {
    if (left.hash != right.hash) return left.hash < right.hash;
    const std::weak_ordering order = CompareIgnoringCase(left.jid, right.jid);
    if (std::is_neq(order)) return std::is_lt(order);
    return std::pair(left.jid, left.sequence) < std::pair(right.jid, right.sequence);
}

void RosterIndex::Learn(Sequence sequence, const cRosterItem& item) {
    byJid_.insert({Key(item.jid_.View(), sequence).hash, sequence, &item});
}

void RosterIndex::Forget(Sequence sequence, const cRosterItem& item) {
    if (auto found = byJid_.find(Key(item.jid_.View(), sequence)); found != byJid_.end()) byJid_.erase(found);
}

Sequence RosterIndex::Find(StringView jid) const {
    auto found = byJid_.lower_bound(Key(jid, 0));
    return found != byJid_.end() && Key(*found).jid == jid ? found->sequence : 0;
}

bool RosterIndex::ContainsIgnoringCase(StringView jid) const {
    auto found = byJid_.lower_bound(Key(ToUpper(jid), 0));
    return found != byJid_.end() && EqualsIgnoringCase(Key(*found).jid, jid);
}

bool GroupLists::ByGroups::operator()(const GroupListPtr& left, const GroupListPtr& right) const {
    return std::lexicographical_compare(left->begin(), left->end(), right->begin(), right->end());
}

GroupListPtr GroupLists::Shared(const GroupListPtr& list) {
    if (lists_.size() >= enough_) {
        std::erase_if(lists_, [](const GroupListPtr& known) { return known.use_count() == 1; });
        enough_ = 2 * lists_.size() + 100;
    }
    return *lists_.insert(list).first;
}

std::int16_t RosterTable::FindRosterItem(StringView jid) const {
    Sequence found = GetIndex().Find(jid);
    return found ? ToInt16(IndexOf(found)) : std::int16_t{0};
}

bool RosterTable::Contains(StringView jid) const { return GetIndex().ContainsIgnoringCase(jid); }

void RosterTable::ParseRoster(const std::shared_ptr<SessionLink>& session, const PresenceTable& presences,
                              const Stanza& stanza) {
    if (!stanza.IsResult() && !stanza.IsSet()) return;
    if (!std::exchange(inProgress_, true)) session->Raise(&SessionEvents::OnRosterBegin);
    try {
        ForEachOutermost(stanza.root, u"item", [&](const ParsedNode& element) {
            std::shared_ptr<cRosterItem> item = Apply(session, element);
            String bareJid = session->Text().Read(ToLower(RemoveResource(item->JID())));
            session->Raise(&SessionEvents::OnRosterItem, item, presences.Primary(bareJid),
                           stanza.NodeOf(element));
        });
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
    item.groups_ = groupLists_->Shared(item.groups_);
}

// A contact that stays keeps the name it is shown under, whatever the server says; one that goes takes the
// server's.
void RosterTable::Update(const TextRules& rules, cRosterItem& item, const ParsedNode& element) {
    ReadState(item, element);
    if (item.Subscription() == KV_Remove) item.NickName(rules.Read(element.Attribute(u"name")));
    if (!element.FirstChild()) return;
    item.RemoveAllGroups();
    AddGroups(rules, item, element, EmptyGroups::Skip);
    item.groups_ = groupLists_->Shared(item.groups_);
}

void RosterTable::ReadState(cRosterItem& item, const ParsedNode& element) {
    if (element.HasAttribute(u"ask")) item.ask_ = FittedText(element.Attribute(u"ask"));
    item.Subscription(SubscriptionOf(element.Attribute(u"subscription")));
}

}  // namespace quorix
