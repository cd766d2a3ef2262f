#include "quorix/im/PresenceTable.h"

#include <algorithm>

#include "quorix/im/RecordIndex.h"

namespace quorix {

class PresenceIndex {
public:
    struct Contact {
        Ordered<String> byResource;
        Ordered<std::int16_t> byPriority;
        std::set<Sequence> all;
    };

    void Learn(Sequence sequence, const cPresenceItem& item);
    void Forget(Sequence sequence, const cPresenceItem& item);

    // Null when the address has no entry.
    const Contact* Find(StringView jid) const;

private:
    StringMap<Contact> contacts_;
};

template class Collection<std::shared_ptr<cPresenceItem>>;
template class RecordTable<cPresenceItem, PresenceIndex>;

PresenceTable::PresenceTable() = default;
PresenceTable::~PresenceTable() = default;

void PresenceIndex::Learn(Sequence sequence, const cPresenceItem& item) {
    Contact learnt;
    learnt.byResource.emplace(item.Resource(), sequence);
    learnt.byPriority.emplace(item.Priority(), sequence);
    learnt.all.insert(sequence);
    Contact& contact = contacts_[item.JID()];
    contact.byResource.merge(learnt.byResource);
    contact.byPriority.merge(learnt.byPriority);
    contact.all.merge(learnt.all);
}

void PresenceIndex::Forget(Sequence sequence, const cPresenceItem& item) {
    auto found = contacts_.find(item.JID());
    if (found == contacts_.end()) return;
    Contact& contact = found->second;
    contact.byResource.erase({item.Resource(), sequence});
    contact.byPriority.erase({item.Priority(), sequence});
    contact.all.erase(sequence);
    if (contact.all.empty()) contacts_.erase(found);
}

const PresenceIndex::Contact* PresenceIndex::Find(StringView jid) const {
    auto found = contacts_.find(jid);
    return found == contacts_.end() ? nullptr : &found->second;
}

std::int32_t PresenceTable::FindPresence(StringView jid, StringView resource, bool primary) {
    if (Count() == 0) return 0;
    if (!resource.empty()) return FindResource(jid, resource);
    if (!primary) return FindNext(jid);
    cursor_ = 1;
    Sequence best = PrimaryOf(jid);
    return best ? IndexOf(best) : 0;
}

std::shared_ptr<cPresenceItem> PresenceTable::Primary(StringView jid) const {
    Sequence best = PrimaryOf(jid);
    return best ? At(best) : nullptr;
}

std::int32_t PresenceTable::FindResource(StringView jid, StringView resource) {
    const PresenceIndex::Contact* contact = GetIndex().Find(jid);
    Sequence found = contact ? FirstOf(contact->byResource, String(resource)) : 0;
    cursor_ = found ? IndexOf(found) : Count() + 1;
    return found ? cursor_ : 0;
}

std::int32_t PresenceTable::FindNext(StringView jid) {
    cursor_ = std::max(cursor_, 1);
    const PresenceIndex::Contact* contact = GetIndex().Find(jid);
    if (contact && cursor_ <= Count()) {
        auto next = contact->all.lower_bound(SequenceOf(cursor_));
        if (next != contact->all.end()) {
            cursor_ = IndexOf(*next) + 1;
            return cursor_ - 1;
        }
    }
    cursor_ = 1;
    return 0;
}

Sequence PresenceTable::PrimaryOf(StringView jid) const {
    const PresenceIndex::Contact* contact = GetIndex().Find(jid);
    if (!contact || contact->byPriority.rbegin()->first < 0) return 0;
    return contact->byPriority.rbegin()->second;
}

}  // namespace quorix
