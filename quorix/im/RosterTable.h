/// \class quorix::RosterTable
/// The contacts of the account, as the server has reported them, in the order of their first mention.
#pragma once

#include <memory>

#include "quorix/base/Export.h"
#include "quorix/im/RecordTable.h"
#include "quorix/im/cRosterItem.h"

namespace quorix {

class GroupLists;
class ParsedNode;
class PresenceTable;
class RosterIndex;
class SessionLink;
class TextRules;
struct Stanza;

class QUORIX_API RosterTable final : public RecordTable<cRosterItem, RosterIndex> {
public:
    RosterTable();
    ~RosterTable() override;

    /// The 1-based index of the first contact of exactly this address, 0 when there is none. Error 6 when it
    /// stands beyond 32767.
    std::int16_t FindRosterItem(StringView jid) const;

    /// Whether a contact has this address, ASCII case aside.
    bool Contains(StringView jid) const;

    /// For the session: applies a roster result or push and raises OnRosterBegin, OnRosterItem after each
    /// contact, and OnRosterEnd. A contact that names a group twice ends the stanza there. Other types do
    /// nothing.
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

    std::unique_ptr<GroupLists> groupLists_;
    bool inProgress_ = false;
};

}  // namespace quorix
