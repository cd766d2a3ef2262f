// A session's events on their way to the automation world, by their numbers.
//
// Flags and kinds go by reference, for clients that declare their handlers so; what a handler writes into
// them is not read.
#pragma once

#include "quorix/automation/Classes.h"
#include "quorix/automation/EventSource.h"
#include "quorix/session/cSession.h"

namespace quorix::automation {

class SessionRelay : public SessionEvents, public EventSource {
public:
    explicit SessionRelay(const std::shared_ptr<cSession>& session) : session_(session) {}

    void OnAuthorized() override { Fire(1, {}); }
    void OnNewUserCreated() override { Fire(2, {}); }
    void OnAgentBegin() override { Fire(3, {}); }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr& node) override {
        Fire(4, {Value(agent), Value(node)});
    }
    void OnAgentEnd() override { Fire(5, {}); }
    void OnError(const NodePtr& node, StringView fromJid, std::int16_t code,
                 StringView description) override {
        Fire(6, {Value(node), Value(fromJid), Value(code), Value(description)});
    }
    void OnSocketError(const NodePtr& node, StringView description, std::int16_t code) override {
        Fire(7, {Value(node), Value(description), Value(code)});
    }
    void OnDisConnected() override { Fire(8, {}); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override { Fire(9, {Value(message)}); }
    void OnMessageEvent(bool noBody, std::int32_t eventKind, StringView fromJid) override {
        Fire(10, {Reference(noBody), Reference(eventKind), Value(fromJid)});
    }
    void OnRosterBegin() override { Fire(11, {}); }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& rosterItem,
                      const std::shared_ptr<cPresenceItem>& presenceItem, const NodePtr& node) override {
        Fire(12, {Value(rosterItem), Value(presenceItem), Value(node)});
    }
    void OnRosterEnd() override { Fire(13, {}); }
    void OnPresence(const std::shared_ptr<cPresenceItem>& presenceItem, bool available, StringView showType,
                    std::int32_t itemType, const NodePtr& node) override {
        Fire(14,
             {Value(presenceItem), Reference(available), Value(showType), Reference(itemType), Value(node)});
    }
    void OnSubscriptionRequest(StringView fromJid, std::int32_t subType, StringView status) override {
        Fire(15, {Value(fromJid), Reference(subType), Value(status)});
    }
    void OnSubscriptionAccept(StringView fromJid, StringView status) override {
        Fire(16, {Value(fromJid), Value(status)});
    }
    void OnSubscriptionDenied(StringView fromJid, StringView status) override {
        Fire(17, {Value(fromJid), Value(status)});
    }
    void OnIncomingXML(StringView xml) override { Fire(18, {Value(xml)}); }
    void OnOutgoingXML(StringView xml) override { Fire(19, {Value(xml)}); }
    void OnIQ(const NodePtr& node) override { Fire(20, {Value(node)}); }
    void OnIQError(const NodePtr& node, StringView fromJid, std::int16_t code,
                   StringView description) override {
        Fire(21, {Value(node), Value(fromJid), Value(code), Value(description)});
    }
    void OnIQResult(const NodePtr& node, StringView fromJid) override {
        Fire(22, {Value(node), Value(fromJid)});
    }
    void OnVCardResult(const std::shared_ptr<cVcard>& vcard, StringView fromJid,
                       const NodePtr& node) override {
        Fire(23, {Value(vcard), Value(fromJid), Value(node)});
    }
    void OnGetLastRequest(StringView fromJid, StringView id) override {
        Fire(24, {Value(fromJid), Value(id)});
    }
    void OnLastSeenResult(const NodePtr& node, StringView fromJid, std::int32_t seconds) override {
        Fire(25, {Value(node), Value(fromJid), Value(seconds)});
    }
    void OnTimeRequest(StringView fromJid, StringView id) override { Fire(26, {Value(fromJid), Value(id)}); }
    void OnTimeResult(StringView fromJid, StringView utc, StringView localDateTime) override {
        Fire(27, {Value(fromJid), Value(utc), Value(localDateTime)});
    }
    void OnVersionRequest(StringView fromJid, StringView id) override {
        Fire(28, {Value(fromJid), Value(id)});
    }
    void OnVersionResult(StringView fromJid, StringView appName, StringView appVer, StringView os) override {
        Fire(29, {Value(fromJid), Value(appName), Value(appVer), Value(os)});
    }
    void OnGroupChat(const std::shared_ptr<cGroupChat>& groupChat, StringView fromJid,
                     const NodePtr& node) override {
        Fire(30, {Value(groupChat), Value(fromJid), Value(node)});
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& browseItem, StringView fromJid,
                         const NodePtr& node) override {
        Fire(31, {Value(browseItem), Value(fromJid), Value(node)});
    }
    void OnSearchFields(const std::shared_ptr<cSearchFields>& searchFields) override {
        Fire(32, {Value(searchFields)});
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& searchresults) override {
        Fire(33, {Value(searchresults)});
    }
    void OnAccountRemoved(StringView fromJid, StringView id) override {
        Fire(34, {Value(fromJid), Value(id)});
    }
    void OnChangedPassword() override { Fire(35, {}); }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& room, const NodePtr& node) override {
        Fire(36, {Value(room), Value(node)});
    }
    void OnChatRoomBrowseResult(StringView fromJid, const NodePtr& node) override {
        Fire(37, {Value(fromJid), Value(node)});
    }
    void OnOOBRequest(StringView fromJid, StringView desc, StringView url) override {
        Fire(38, {Value(fromJid), Value(desc), Value(url)});
    }
    void OnOOBResult(StringView fromJid, bool success) override {
        Fire(39, {Value(fromJid), Reference(success)});
    }
    void OnGCInvite10(StringView roomJid, StringView fromJid, StringView body, StringView subject,
                      const NodePtr& node) override {
        Fire(40, {Value(roomJid), Value(fromJid), Value(body), Value(subject), Value(node)});
    }
    void OnWhoisOnlineStart() override { Fire(41, {}); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& presenceItem) override {
        Fire(42, {Value(presenceItem)});
    }
    void OnWhoisOnlineEnd() override { Fire(43, {}); }
    void OnGatewayInfo(const NodePtr& node, StringView desc) override {
        Fire(44, {Value(node), Value(desc)});
    }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& rosterItem, StringView fromJid) override {
        Fire(45, {Value(rosterItem), Value(fromJid)});
    }

protected:
    bool Attach() override {
        if (auto session = session_.lock()) session->Advise(Self());
        return true;
    }
    void Detach() override {
        if (auto session = session_.lock()) session->Unadvise(Self());
    }

private:
    std::shared_ptr<SessionEvents> Self() {
        return std::static_pointer_cast<SessionRelay>(shared_from_this());
    }

    std::weak_ptr<cSession> session_;
};

}  // namespace quorix::automation
