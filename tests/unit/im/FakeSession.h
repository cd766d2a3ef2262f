// A session that keeps what is sent and raised, for tests of the features that see only a SessionLink.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/im/Roster.h"
#include "quorix/im/RosterTable.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"
#include "tests/unit/im/EventLog.h"

namespace quorix::test {

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
