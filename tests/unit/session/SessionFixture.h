// A session on the deterministic environment, and a record of what it raises.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix {

using Lines = std::vector<std::string>;

// Every event as one line: its name, and the arguments that a test can compare. A hook, if any, is called
// behind each line with the event's name.
class EventRecorder : public SessionEvents {
public:
    Lines lines;
    Lines incoming;
    Lines outgoing;
    std::vector<NodePtr> nodes;
    std::function<void(const std::string& event)> hook;

    std::size_t Count(const std::string& event) const;
    Lines Take() { return std::exchange(lines, {}); }

    void OnAuthorized() override { Note("OnAuthorized"); }
    void OnNewUserCreated() override { Note("OnNewUserCreated"); }
    void OnAgentBegin() override { Note("OnAgentBegin"); }
    void OnAgentEnd() override { Note("OnAgentEnd"); }
    void OnError(const NodePtr& node, StringView from, std::int16_t code, StringView text) override {
        nodes.push_back(node);
        Note("OnError", from, ToString(code), text);
    }
    void OnSocketError(const NodePtr& node, StringView text, std::int16_t code) override {
        nodes.push_back(node);
        Note("OnSocketError", text, ToString(code));
    }
    void OnDisConnected() override { Note("OnDisConnected"); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override { Note("OnMessage", message->Body()); }
    void OnRosterBegin() override { Note("OnRosterBegin"); }
    void OnRosterEnd() override { Note("OnRosterEnd"); }
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
        Note("OnIQError", from, ToString(code), text);
    }
    void OnIQResult(const NodePtr& /*node*/, StringView from) override { Note("OnIQResult", from); }
    void OnAccountRemoved(StringView from, StringView id) override { Note("OnAccountRemoved", from, id); }
    void OnChangedPassword() override { Note("OnChangedPassword"); }
    void OnWhoisOnlineStart() override { Note("OnWhoisOnlineStart"); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& item) override {
        Note("OnWhoisOnlineUser", item->JID());
    }
    void OnWhoisOnlineEnd() override { Note("OnWhoisOnlineEnd"); }

private:
    template <class... Texts>
    void Note(const std::string& event, const Texts&... texts) {
        std::string line = event;
        ((line += " " + BytesFromWire(texts)), ...);
        lines.push_back(line);
        if (hook) hook(event);
    }
};

class SessionTest : public ::testing::Test {
protected:
    SessionTest();

    // To the point where the stream is open, with the id "s1", and the fields query has been sent.
    void OpenStream();
    // To the point where the login was accepted; the record is then empty.
    void LogIn();
    void Say(std::string_view bytes);
    std::string Heard() { return env.Peer().TakeHeard(); }

    testkit::DeterministicEnvironment env;
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<EventRecorder> events = std::make_shared<EventRecorder>();
};

}  // namespace quorix
