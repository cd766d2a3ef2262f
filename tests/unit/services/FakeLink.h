// A session as the services see it: keeps what is sent, counts ids, hands events to one log.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix::tests {

class FakeLink : public SessionLink {
public:
    explicit FakeLink(std::shared_ptr<SessionEvents> sink = std::make_shared<SessionEvents>())
        : sink_(std::move(sink)) {}

    void SendXML(StringView xml) override { sent.push_back(Utf8FromText(xml)); }
    bool IsConnected() const override { return true; }
    String GetNextID() override { return u"KV_" + ToString(++ids); }
    String ServerAddress() const override { return u"srv"; }
    String username() const override { return u"me"; }
    String Password() const override { return u"pw<"; }
    String Resource() const override { return u"res"; }
    String MyJid() const override { return u"me@srv"; }
    eItemType FindItemType(StringView) override { return KV_Unknown; }
    bool LeaveRoom(StringView, StringView) override { return false; }
    void ForEachSink(const std::function<void(SessionEvents&)>& raise) override { raise(*sink_); }

    // What was sent last; taking it empties the list.
    std::string TakeSent() {
        std::string last = sent.empty() ? "(nothing)" : sent.back();
        sent.clear();
        return last;
    }

    std::vector<std::string> sent;
    int ids = 0;

private:
    std::shared_ptr<SessionEvents> sink_;
};

inline Stanza StanzaOf(StringView xml) {
    auto node = std::make_shared<cXML_Node>();
    node->xml(xml);
    return Stanza(node);
}

}  // namespace quorix::tests
