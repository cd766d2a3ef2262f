// Rooms: entering and leaving them, and who is there.
#pragma once

#include <memory>
#include <vector>

#include "apps/console/Desk.h"

namespace quorix::console {

class RoomDesk : public Desk {
public:
    using Desk::Desk;

    void Join(StringView roomJid, StringView nickname);
    void Leave(StringView roomJid);
    // The room of that JID that was joined here, or an error on the console and null.
    std::shared_ptr<cGroupChat> Room(StringView roomJid);
    // Whether that is the user's own presence in a room.
    bool HasJoined(StringView roomJid, StringView nickname) const;

    void OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable, StringView ShowType,
                    std::int32_t ItemType, const NodePtr& XMLElement) override;
    void OnIncomingXML(StringView XML) override;
    void OnDisConnected() override { rooms_.clear(); }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                  const NodePtr& XMLElement) override;
    void OnChatRoomBrowseResult(StringView FromJid, const NodePtr& XMLElement) override;
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView FromJid,
                         const NodePtr& XMLElement) override;
    void OnGCInvite10(StringView RoomJid, StringView FromJid, StringView Body, StringView Subject,
                      const NodePtr& XMLElement) override;

private:
    struct Member {
        std::shared_ptr<cGroupChat> room;
        bool joined = false;
    };
    Member* Find(StringView roomJid);

    std::vector<Member> rooms_;
};

}  // namespace quorix::console
