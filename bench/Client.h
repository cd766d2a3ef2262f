// A session on the deterministic environment, with an application that reads every field of what arrives.
#pragma once

#include <memory>

#include "quorix/im/cRosterItem.h"
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix {

constexpr std::size_t kChunk = 2000;

class Reader : public SessionEvents {
public:
    explicit Reader(bool wireText) : wireText_(wireText) {}

    void OnIncomingXML(StringView XML) override { characters += XML.size(); }
    void OnMessage(const std::shared_ptr<cMessage>& m) override {
        characters += m->ID().size() + m->ToJID().size() + m->FromJid().size() + m->Body().size() +
                      m->Subject().size() + m->Thread().size() + m->MSG_Type();
        ++messages;
    }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>&,
                      const NodePtr&) override {
        characters +=
            item->JID().size() + item->NickName().size() + item->Ask().size() + item->Subscription();
        for (const String& group : item->Groups()) characters += group.size();
        ++contacts;
    }
    bool WantsWireText() const override { return wireText_; }

    std::size_t characters = 0;
    std::int64_t messages = 0;
    std::int64_t contacts = 0;

private:
    bool wireText_;
};

struct Client {
    explicit Client(eMode mode, bool wireText = true) : reader(std::make_shared<Reader>(wireText)) {
        session->Mode(mode);
        session->Advise(reader);
        session->ServerAddress(u"s");
        session->username(u"u");
        session->Password(u"p");
        session->Resource(u"r");
    }

    void LogIn() {
        session->Connect();
        env.DoEvents();
        Say("<stream:stream id='1' xmlns:stream='s'>");
        Say("<iq type='result'><query xmlns='jabber:iq:auth'><digest/></query></iq>");
        Say("<iq type='result' id='kv_login'/>");
    }

    void Say(std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(kChunk, bytes.size()))) {
            env.Peer().Say(bytes.substr(0, kChunk));
            env.DoEvents();
        }
        env.Peer().TakeHeard();
    }

    testkit::DeterministicEnvironment env;
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Reader> reader;
};

}  // namespace quorix
