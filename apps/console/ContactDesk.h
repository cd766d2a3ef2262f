// Contacts and their presence.
#pragma once

#include "apps/console/Desk.h"

namespace quorix::console {

class ContactDesk : public Desk {
public:
    using Desk::Desk;

    // Fetches the contacts and lists them, or only tells how many there are.
    void Fetch(bool listed);

    void OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable, StringView ShowType,
                    std::int32_t ItemType, const NodePtr& XMLElement) override;
    void OnSubscriptionRequest(StringView FromJid, std::int32_t SubType, StringView Status) override;
    void OnSubscriptionAccept(StringView FromJid, StringView Status) override;
    void OnSubscriptionDenied(StringView FromJid, StringView Status) override;
    void OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                      const std::shared_ptr<cPresenceItem>& PresenceItem, const NodePtr& XMLElement) override;
    void OnRosterEnd() override;
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& RosterItem, StringView FromJid) override;

private:
    bool countsOnly_ = false;
};

// How `item` is reached: "away", "dnd" and so on; "online" for none of them.
StringView Mood(const cPresenceItem& item);

}  // namespace quorix::console
