// The chat side of the console: prints messages, presence and contacts, and reports what was displayed.
#pragma once

#include <map>
#include <memory>
#include <set>

#include "apps/console/Text.h"
#include "quorix/session/cSession.h"

namespace quorix::console {

class Console;

class ChatDesk : public SessionEvents {
public:
    explicit ChatDesk(Console& console) : console_(console) {}

    // Tells `jid` (wire text) that an answer to its last message is being typed, or no longer.
    void Typing(StringView jid, bool stopped);

    void OnMessage(const std::shared_ptr<cMessage>& Message) override;
    void OnMessageEvent(bool NoBody, std::int32_t EventKind, StringView FromJid) override;
    void OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable, StringView ShowType,
                    std::int32_t ItemType, const NodePtr& XMLElement) override;
    void OnSubscriptionRequest(StringView FromJid, std::int32_t SubType, StringView Status) override;
    void OnSubscriptionAccept(StringView FromJid, StringView Status) override;
    void OnSubscriptionDenied(StringView FromJid, StringView Status) override;
    void OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                      const std::shared_ptr<cPresenceItem>& PresenceItem, const NodePtr& XMLElement) override;
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& RosterItem, StringView FromJid) override;

private:
    cSession& Session();
    void Print(std::initializer_list<StringView> parts);
    void ShowReport(std::int32_t eventKind, StringView fromJid);

    Console& console_;
    std::map<String, std::shared_ptr<cMessage>> last_;  // by sender, both as they come with their resource
    std::set<String> typing_;
};

// How `item` is reached: "away", "dnd" and so on; "online" for none of them.
StringView Mood(const cPresenceItem& item);

}  // namespace quorix::console
