/// \class quorix::RosterTable
/// The contacts of the account, as the server has reported them, in the order of their first mention.
#pragma once

#include <memory>

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
    bool ContainsIgnoringCase(StringView jid) const { return byFoldedJid_.contains(ToLower(jid)); }

private:
    StringMap<Ordered<String>> byFoldedJid_;  // the exact addresses that are one but for their case
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
    static void Fill(const TextRules& rules, cRosterItem& item, const ParsedNode& element);
    static void Update(const TextRules& rules, cRosterItem& item, const ParsedNode& element);
    static void ReadState(cRosterItem& item, const ParsedNode& element);

    bool inProgress_ = false;
};

}  // namespace quorix
