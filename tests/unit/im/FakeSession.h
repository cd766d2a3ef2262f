// A session that keeps what is sent and raised, for tests of the features that see only a SessionLink.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/im/Roster.h"
#include "quorix/im/RosterTable.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix::test {

using Lines = std::vector<std::string>;

inline std::string Show(StringView text) { return Utf8FromText(text); }

// Each event of this room as one line of text.
class EventLog : public SessionEvents {
public:
    Lines lines;
    std::vector<std::shared_ptr<cMessage>> messages;
    std::vector<std::shared_ptr<cPresenceItem>> presences;
    std::vector<std::shared_ptr<cRosterItem>> received;
    NodePtr lastNode;
    std::shared_ptr<cPresenceItem> lastPrimary;
    std::function<void()> onRosterItem = [] {};

    void OnError(const NodePtr& node, StringView from, std::int16_t code, StringView text) override {
        lastNode = node;
        Log({"OnError", Show(from), std::to_string(code), Show(text)});
    }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        messages.push_back(message);
        Log({"OnMessage", Show(message->Body())});
    }
    void OnMessageEvent(bool noBody, std::int32_t kind, StringView from) override {
        Log({"OnMessageEvent", noBody ? "1" : "0", std::to_string(kind), Show(from)});
    }
    void OnRosterBegin() override { Log({"OnRosterBegin"}); }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>& primary,
                      const NodePtr& node) override {
        lastNode = node;
        lastPrimary = primary;
        Log({"OnRosterItem", Show(item->JID()), std::to_string(item->Subscription())});
        onRosterItem();
    }
    void OnRosterEnd() override { Log({"OnRosterEnd"}); }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool available, StringView show,
                    std::int32_t itemType, const NodePtr& node) override {
        lastNode = node;
        presences.push_back(item);
        Log({"OnPresence", Show(item->JID()), Show(item->Resource()), available ? "1" : "0", Show(show),
             std::to_string(itemType)});
    }
    void OnSubscriptionRequest(StringView from, std::int32_t kind, StringView status) override {
        Log({"OnSubscriptionRequest", Show(from), std::to_string(kind), Show(status)});
    }
    void OnSubscriptionAccept(StringView from, StringView status) override {
        Log({"OnSubscriptionAccept", Show(from), Show(status)});
    }
    void OnSubscriptionDenied(StringView from, StringView status) override {
        Log({"OnSubscriptionDenied", Show(from), Show(status)});
    }
    void OnGCInvite10(StringView room, StringView from, StringView body, StringView subject,
                      const NodePtr& node) override {
        lastNode = node;
        Log({"OnGCInvite10", Show(room), Show(from), Show(body), Show(subject)});
    }
    void OnWhoisOnlineStart() override { Log({"OnWhoisOnlineStart"}); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& item) override {
        Log({"OnWhoisOnlineUser", Show(item->JID()), Show(item->Status())});
    }
    void OnWhoisOnlineEnd() override { Log({"OnWhoisOnlineEnd"}); }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& item, StringView from) override {
        received.push_back(item);
        Log({"OnReceiveRosterItem", Show(item->JID()), Show(item->NickName()), Show(from)});
    }

private:
    void Log(const Lines& words) {
        std::string line;
        for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
        lines.push_back(line);
    }
};

class FakeSession : public SessionLink, public std::enable_shared_from_this<FakeSession> {
public:
    static std::shared_ptr<FakeSession> Make() { return std::make_shared<FakeSession>(); }

    EventLog log;
    Lines sent;
    PresenceTable presences;
    RosterTable roster;
    std::map<String, eItemType> kinds;
    String leftRoom;  // "room/nickname" that LeaveRoom accepts
    String resource = u"Home";
    bool connected = true;

    // What arrives, as the dispatcher would hand it on; `xml` is wire text.
    void Arrive(StringView xml) {
        auto node = std::make_shared<cXML_Node>();
        node->xml(xml);
        Stanza stanza(node);
        if (stanza.root.Is(u"message")) HandleMessage(shared_from_this(), stanza);
        if (stanza.root.Is(u"presence")) HandlePresence(shared_from_this(), presences, stanza);
        if (stanza.root.Is(u"iq")) roster.ParseRoster(shared_from_this(), presences, stanza);
    }

    Lines TakeEvents() { return std::exchange(log.lines, {}); }
    Lines TakeSent() { return std::exchange(sent, {}); }

    void SendXML(StringView xml) override { sent.push_back(Show(xml)); }
    bool IsConnected() const override { return connected; }
    String GetNextID() override { return Concat({u"KV_", ToString(++lastId_)}); }
    String ServerAddress() const override { return u"example.org"; }
    String username() const override { return u"Me"; }
    String Password() const override { return u"secret"; }
    String Resource() const override { return resource; }
    String MyJid() const override { return u"Me@example.org"; }
    eItemType FindItemType(StringView jid) override {
        auto kind = kinds.find(String(jid));
        return kind == kinds.end() ? KV_Unknown : kind->second;
    }
    bool LeaveRoom(StringView jid, StringView nickname) override {
        return leftRoom == Concat({jid, u"/", nickname});
    }
    void ForEachSink(const std::function<void(SessionEvents&)>& raise) override { raise(log); }

private:
    int lastId_ = 0;
};

inline std::shared_ptr<cXML_Node> Node(StringView xml) {
    auto node = std::make_shared<cXML_Node>();
    node->xml(xml);
    return node;
}

}  // namespace quorix::test
