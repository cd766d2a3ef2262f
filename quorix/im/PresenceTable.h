/// \class quorix::PresenceTable
/// The presences that the session has seen, one entry for each address and resource, in order of arrival.
#pragma once

#include "quorix/base/Export.h"
#include "quorix/im/RecordTable.h"
#include "quorix/im/cPresenceItem.h"

namespace quorix {

class PresenceIndex;

class QUORIX_API PresenceTable final : public RecordTable<cPresenceItem, PresenceIndex> {
public:
    PresenceTable();
    ~PresenceTable() override;

    /// The 1-based index of an entry, 0 when there is none. Addresses and resources are text, compared
    /// exactly.
    /// - With `resource`: its entry; `primary` is ignored.
    /// - Without, `primary` true: the entry of the highest priority that is not negative; of equal ones the
    ///   latest.
    /// - Without, `primary` false: one step of an enumeration; each call returns the next entry of `jid`,
    ///   then 0 once, then it begins again.
    ///
    /// All calls, for whatever address, share one cursor, and each presence that arrives moves it. So begin
    /// an enumeration by FindPresence(jid, u"", true), which sets the cursor to the first entry, and run no
    /// message loop before it ends.
    std::int32_t FindPresence(StringView jid, StringView resource, bool primary);

    /// The entry that is primary by the same rule, null when there is none. Leaves the cursor alone.
    std::shared_ptr<cPresenceItem> Primary(StringView jid) const;

private:
    std::int32_t FindResource(StringView jid, StringView resource);
    std::int32_t FindNext(StringView jid);
    Sequence PrimaryOf(StringView jid) const;

    std::int32_t cursor_ = 0;  // an index; 0 before the first use
};

}  // namespace quorix
