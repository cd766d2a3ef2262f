/// \class quorix::RosterTable
/// The contacts of the account, as the server has reported them, in the order of their first mention.
#pragma once

#include <memory>
#include <set>

#include "quorix/im/PresenceTable.h"
#include "quorix/im/RecordTable.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

class RosterIndex {
public:
    void Learn(Sequence sequence, const cRosterItem& item);
    void Forget(Sequence sequence, const cRosterItem& item);

    /// The first entry of exactly this address, 0 when there is none.
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

class RosterTable : public RecordTable<cRosterItem, RosterIndex> {
public:
    /// The 1-based index of the first contact of exactly this address, 0 when there is none. Error 6 when it
    /// stands beyond 32767.
    std::int16_t FindRosterItem(StringView jid) const;

    /// Whether a contact has this address, ASCII case aside.
    bool Contains(StringView jid) const { return GetIndex().ContainsIgnoringCase(jid); }

    /// Applies a roster result or push and raises OnRosterBegin, OnRosterItem after each contact, and
    /// OnRosterEnd. A contact that names a group twice ends the stanza there. Other types do nothing.
    void ParseRoster(const std::shared_ptr<SessionLink>& session, const PresenceTable& presences,
                     const Stanza& stanza);

    /// The stream has ended, and a roster that was being parsed with it.
    void StreamEnded() { inProgress_ = false; }

private:
    std::shared_ptr<cRosterItem> Apply(const std::shared_ptr<SessionLink>& session,
                                       const ParsedNode& element);
    void Fill(const TextRules& rules, cRosterItem& item, const ParsedNode& element);
    void Update(const TextRules& rules, cRosterItem& item, const ParsedNode& element);
    static void ReadState(cRosterItem& item, const ParsedNode& element);

    GroupLists groupLists_;
    bool inProgress_ = false;
};

}  // namespace quorix
