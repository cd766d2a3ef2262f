// A record of everything that a session raises.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"

namespace quorix::testkit {

using Lines = std::vector<std::string>;

// Every event as one line: its name, and the arguments that a test can compare, in UTF-8. The records and
// elements that came with them are kept. A hook, if any, is called behind each line with the event's name.
class EventRecorder : public SessionEvents {
public:
    Lines lines;
    Lines incoming;
    Lines outgoing;
    std::vector<NodePtr> nodes;
    std::vector<std::shared_ptr<cMessage>> messages;
    std::vector<std::shared_ptr<cPresenceItem>> presences;
    std::vector<std::shared_ptr<cRosterItem>> received;
    NodePtr rosterElement;
    std::shared_ptr<cPresenceItem> rosterPresence;
    std::shared_ptr<cVcard> vcard;
    std::shared_ptr<cGroupChat> room;
    std::function<void(const std::string& event)> hook;

    std::size_t Count(const std::string& event) const;
    Lines Take() { return std::exchange(lines, {}); }

    void OnAuthorized() override { Note("OnAuthorized"); }
    void OnNewUserCreated() override { Note("OnNewUserCreated"); }
    void OnAgentBegin() override { Note("OnAgentBegin"); }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr& node) override {
        Note("OnAgentItem", agent->JID(), node);
    }
    void OnAgentEnd() override { Note("OnAgentEnd"); }
    void OnError(const NodePtr& node, StringView from, std::int16_t code, StringView text) override {
        nodes.push_back(node);
        Note("OnError", from, code, text);
    }
    void OnSocketError(const NodePtr& node, StringView text, std::int16_t code) override {
        nodes.push_back(node);
        Note("OnSocketError", text, code);
    }
    void OnDisConnected() override { Note("OnDisConnected"); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        messages.push_back(message);
        Note("OnMessage", message->Body());
    }
    void OnMessageEvent(bool noBody, std::int32_t kind, StringView from) override {
        Note("OnMessageEvent", noBody, kind, from);
    }
    void OnRosterBegin() override { Note("OnRosterBegin"); }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>& primary,
                      const NodePtr& node) override {
        rosterElement = node;
        rosterPresence = primary;
        Note("OnRosterItem", item->JID(), item->Subscription());
    }
    void OnRosterEnd() override { Note("OnRosterEnd"); }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool available, StringView show,
                    std::int32_t itemType, const NodePtr& /*node*/) override {
        presences.push_back(item);
        Note("OnPresence", item->JID(), item->Resource(), available, show, itemType);
    }
    void OnSubscriptionRequest(StringView from, std::int32_t kind, StringView status) override {
        Note("OnSubscriptionRequest", from, kind, status);
    }
    void OnSubscriptionAccept(StringView from, StringView status) override {
        Note("OnSubscriptionAccept", from, status);
    }
    void OnSubscriptionDenied(StringView from, StringView status) override {
        Note("OnSubscriptionDenied", from, status);
    }
    void OnIncomingXML(StringView xml) override {
        incoming.push_back(BytesFromWire(xml));
        if (hook) hook("OnIncomingXML");
    }
    void OnOutgoingXML(StringView xml) override {
        outgoing.push_back(BytesFromWire(xml));
        if (hook) hook("OnOutgoingXML");
    }
    void OnIQ(const NodePtr& node) override {
        nodes.push_back(node);
        Note("OnIQ");
    }
    void OnIQError(const NodePtr& /*node*/, StringView from, std::int16_t code, StringView text) override {
        Note("OnIQError", from, code, text);
    }
    void OnIQResult(const NodePtr& /*node*/, StringView from) override { Note("OnIQResult", from); }
    void OnVCardResult(const std::shared_ptr<cVcard>& card, StringView from, const NodePtr& node) override {
        vcard = card;
        Note("OnVCardResult", from, node);
    }
    void OnGetLastRequest(StringView from, StringView id) override { Note("OnGetLastRequest", from, id); }
    void OnLastSeenResult(const NodePtr& node, StringView from, std::int32_t seconds) override {
        Note("OnLastSeenResult", node, from, seconds);
    }
    void OnTimeRequest(StringView from, StringView id) override { Note("OnTimeRequest", from, id); }
    void OnTimeResult(StringView from, StringView utc, StringView display) override {
        Note("OnTimeResult", from, utc, display);
    }
    void OnVersionRequest(StringView from, StringView id) override { Note("OnVersionRequest", from, id); }
    void OnVersionResult(StringView from, StringView name, StringView version, StringView os) override {
        Note("OnVersionResult", from, name, version, os);
    }
    void OnGroupChat(const std::shared_ptr<cGroupChat>& chat, StringView from, const NodePtr& node) override {
        room = chat;
        Note("OnGroupChat", from, node);
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& item, StringView from,
                         const NodePtr& node) override {
        Note("OnGroupChatItem", from, item->JID(), item->Name(), item->SubType(), node);
    }
    void OnSearchFields(const std::shared_ptr<cSearchFields>& fields) override {
        Note("OnSearchFields", fields->Count());
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& results) override {
        Note("OnSearchResults", results->Count());
    }
    void OnAccountRemoved(StringView from, StringView id) override { Note("OnAccountRemoved", from, id); }
    void OnChangedPassword() override { Note("OnChangedPassword"); }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& found, const NodePtr& node) override {
        room = found;
        Note("OnChatServerBrowseResult", found ? found->JID() : String(u"(none)"), node);
    }
    void OnChatRoomBrowseResult(StringView from, const NodePtr& node) override {
        Note("OnChatRoomBrowseResult", from, node);
    }
    void OnOOBRequest(StringView from, StringView desc, StringView url) override {
        Note("OnOOBRequest", from, desc, url);
    }
    void OnOOBResult(StringView from, bool success) override { Note("OnOOBResult", from, success); }
    void OnGCInvite10(StringView roomJid, StringView from, StringView body, StringView subject,
                      const NodePtr& /*node*/) override {
        Note("OnGCInvite10", roomJid, from, body, subject);
    }
    void OnWhoisOnlineStart() override { Note("OnWhoisOnlineStart"); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& item) override {
        Note("OnWhoisOnlineUser", item->JID(), item->Status());
    }
    void OnWhoisOnlineEnd() override { Note("OnWhoisOnlineEnd"); }
    void OnGatewayInfo(const NodePtr& node, StringView desc) override { Note("OnGatewayInfo", node, desc); }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& item, StringView from) override {
        received.push_back(item);
        Note("OnReceiveRosterItem", item->JID(), item->NickName(), from);
    }

private:
    static std::string Show(StringView text) { return Utf8FromText(text); }
    static std::string Show(std::int32_t number) { return std::to_string(number); }
    static std::string Show(const NodePtr& node) { return Utf8FromText(node->GetNamespace()); }

    template <class... Arguments>
    void Note(const std::string& event, const Arguments&... arguments) {
        lines.push_back(event);
        ((lines.back() += " " + Show(arguments)), ...);
        if (hook) hook(event);
    }
};

}  // namespace quorix::testkit
