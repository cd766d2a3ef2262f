#include "quorix/scripting/SessionEventTable.h"

#include "quorix/scripting/Classes.h"

namespace quorix::scripting {
namespace {

class SessionRelay : public SessionEvents {
public:
    explicit SessionRelay(std::shared_ptr<Listener> listener) : listener_(std::move(listener)) {}

    void OnAuthorized() override { Pass(1); }
    void OnNewUserCreated() override { Pass(2); }
    void OnAgentBegin() override { Pass(3); }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr& node) override {
        Pass(4, agent, node);
    }
    void OnAgentEnd() override { Pass(5); }
    void OnError(const NodePtr& node, StringView fromJid, std::int16_t code,
                 StringView description) override {
        Pass(6, node, fromJid, code, description);
    }
    void OnSocketError(const NodePtr& node, StringView description, std::int16_t code) override {
        Pass(7, node, description, code);
    }
    void OnDisConnected() override { Pass(8); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override { Pass(9, message); }
    void OnMessageEvent(bool noBody, std::int32_t eventKind, StringView fromJid) override {
        Pass(10, noBody, eventKind, fromJid);
    }
    void OnRosterBegin() override { Pass(11); }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& rosterItem,
                      const std::shared_ptr<cPresenceItem>& presenceItem, const NodePtr& node) override {
        Pass(12, rosterItem, presenceItem, node);
    }
    void OnRosterEnd() override { Pass(13); }
    void OnPresence(const std::shared_ptr<cPresenceItem>& presenceItem, bool available, StringView showType,
                    std::int32_t itemType, const NodePtr& node) override {
        Pass(14, presenceItem, available, showType, itemType, node);
    }
    void OnSubscriptionRequest(StringView fromJid, std::int32_t subType, StringView status) override {
        Pass(15, fromJid, subType, status);
    }
    void OnSubscriptionAccept(StringView fromJid, StringView status) override { Pass(16, fromJid, status); }
    void OnSubscriptionDenied(StringView fromJid, StringView status) override { Pass(17, fromJid, status); }
    void OnIncomingXML(StringView xml) override { Pass(18, xml); }
    void OnOutgoingXML(StringView xml) override { Pass(19, xml); }
    void OnIQ(const NodePtr& node) override { Pass(20, node); }
    void OnIQError(const NodePtr& node, StringView fromJid, std::int16_t code,
                   StringView description) override {
        Pass(21, node, fromJid, code, description);
    }
    void OnIQResult(const NodePtr& node, StringView fromJid) override { Pass(22, node, fromJid); }
    void OnVCardResult(const std::shared_ptr<cVcard>& vcard, StringView fromJid,
                       const NodePtr& node) override {
        Pass(23, vcard, fromJid, node);
    }
    void OnGetLastRequest(StringView fromJid, StringView id) override { Pass(24, fromJid, id); }
    void OnLastSeenResult(const NodePtr& node, StringView fromJid, std::int32_t seconds) override {
        Pass(25, node, fromJid, seconds);
    }
    void OnTimeRequest(StringView fromJid, StringView id) override { Pass(26, fromJid, id); }
    void OnTimeResult(StringView fromJid, StringView utc, StringView localDateTime) override {
        Pass(27, fromJid, utc, localDateTime);
    }
    void OnVersionRequest(StringView fromJid, StringView id) override { Pass(28, fromJid, id); }
    void OnVersionResult(StringView fromJid, StringView appName, StringView appVer, StringView os) override {
        Pass(29, fromJid, appName, appVer, os);
    }
    void OnGroupChat(const std::shared_ptr<cGroupChat>& groupChat, StringView fromJid,
                     const NodePtr& node) override {
        Pass(30, groupChat, fromJid, node);
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& browseItem, StringView fromJid,
                         const NodePtr& node) override {
        Pass(31, browseItem, fromJid, node);
    }
    void OnSearchFields(const std::shared_ptr<cSearchFields>& searchFields) override {
        Pass(32, searchFields);
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& searchresults) override {
        Pass(33, searchresults);
    }
    void OnAccountRemoved(StringView fromJid, StringView id) override { Pass(34, fromJid, id); }
    void OnChangedPassword() override { Pass(35); }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& room, const NodePtr& node) override {
        Pass(36, room, node);
    }
    void OnChatRoomBrowseResult(StringView fromJid, const NodePtr& node) override { Pass(37, fromJid, node); }
    void OnOOBRequest(StringView fromJid, StringView desc, StringView url) override {
        Pass(38, fromJid, desc, url);
    }
    void OnOOBResult(StringView fromJid, bool success) override { Pass(39, fromJid, success); }
    void OnGCInvite10(StringView roomJid, StringView fromJid, StringView body, StringView subject,
                      const NodePtr& node) override {
        Pass(40, roomJid, fromJid, body, subject, node);
    }
    void OnWhoisOnlineStart() override { Pass(41); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& presenceItem) override {
        Pass(42, presenceItem);
    }
    void OnWhoisOnlineEnd() override { Pass(43); }
    void OnGatewayInfo(const NodePtr& node, StringView desc) override { Pass(44, node, desc); }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& rosterItem, StringView fromJid) override {
        Pass(45, rosterItem, fromJid);
    }

    bool WantsWireText() const override { return Wants(18) || Wants(19); }

private:
    bool Wants(std::size_t number) const { return listener_->Wants(SessionEventList()[number - 1]); }

    template <class... A>
    void Pass(std::size_t number, const A&... arguments) {
        Tell(*listener_, SessionEventList()[number - 1], arguments...);
    }

    std::shared_ptr<Listener> listener_;
};

}  // namespace

const std::vector<Event>& SessionEventList() {
    using E = SessionEvents;
    static const std::vector<Event> list = {
        EventOf("OnAuthorized", &E::OnAuthorized),
        EventOf("OnNewUserCreated", &E::OnNewUserCreated),
        EventOf("OnAgentBegin", &E::OnAgentBegin),
        EventOf("OnAgentItem", &E::OnAgentItem),
        EventOf("OnAgentEnd", &E::OnAgentEnd),
        EventOf("OnError", &E::OnError),
        EventOf("OnSocketError", &E::OnSocketError),
        EventOf("OnDisConnected", &E::OnDisConnected),
        EventOf("OnMessage", &E::OnMessage),
        EventOf("OnMessageEvent", &E::OnMessageEvent),
        EventOf("OnRosterBegin", &E::OnRosterBegin),
        EventOf("OnRosterItem", &E::OnRosterItem),
        EventOf("OnRosterEnd", &E::OnRosterEnd),
        EventOf("OnPresence", &E::OnPresence),
        EventOf("OnSubscriptionRequest", &E::OnSubscriptionRequest),
        EventOf("OnSubscriptionAccept", &E::OnSubscriptionAccept),
        EventOf("OnSubscriptionDenied", &E::OnSubscriptionDenied),
        EventOf("OnIncomingXML", &E::OnIncomingXML),
        EventOf("OnOutgoingXML", &E::OnOutgoingXML),
        EventOf("OnIQ", &E::OnIQ),
        EventOf("OnIQError", &E::OnIQError),
        EventOf("OnIQResult", &E::OnIQResult),
        EventOf("OnVCardResult", &E::OnVCardResult),
        EventOf("OnGetLastRequest", &E::OnGetLastRequest),
        EventOf("OnLastSeenResult", &E::OnLastSeenResult),
        EventOf("OnTimeRequest", &E::OnTimeRequest),
        EventOf("OnTimeResult", &E::OnTimeResult),
        EventOf("OnVersionRequest", &E::OnVersionRequest),
        EventOf("OnVersionResult", &E::OnVersionResult),
        EventOf("OnGroupChat", &E::OnGroupChat),
        EventOf("OnGroupChatItem", &E::OnGroupChatItem),
        EventOf("OnSearchFields", &E::OnSearchFields),
        EventOf("OnSearchResults", &E::OnSearchResults),
        EventOf("OnAccountRemoved", &E::OnAccountRemoved),
        EventOf("OnChangedPassword", &E::OnChangedPassword),
        EventOf("OnChatServerBrowseResult", &E::OnChatServerBrowseResult),
        EventOf("OnChatRoomBrowseResult", &E::OnChatRoomBrowseResult),
        EventOf("OnOOBRequest", &E::OnOOBRequest),
        EventOf("OnOOBResult", &E::OnOOBResult),
        EventOf("OnGCInvite10", &E::OnGCInvite10),
        EventOf("OnWhoisOnlineStart", &E::OnWhoisOnlineStart),
        EventOf("OnWhoisOnlineUser", &E::OnWhoisOnlineUser),
        EventOf("OnWhoisOnlineEnd", &E::OnWhoisOnlineEnd),
        EventOf("OnGatewayInfo", &E::OnGatewayInfo),
        EventOf("OnReceiveRosterItem", &E::OnReceiveRosterItem),
    };
    return list;
}

Connection ListenToSession(const std::shared_ptr<cSession>& session, std::shared_ptr<Listener> listener) {
    const auto relay = std::make_shared<SessionRelay>(std::move(listener));
    session->Advise(relay);
    return {relay.get(), [relay, known = std::weak_ptr(session)](void*) {
                if (const auto alive = known.lock()) alive->Unadvise(relay);
            }};
}

}  // namespace quorix::scripting
