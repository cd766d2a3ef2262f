// A bot that answers each message with its own text, as long as the server lets it.
//
// Waiting is left to the session: a login has LoginTimeout seconds, and what was lost or failed comes back, first after
// ReconnectInterval seconds, then ever more slowly. It does not come back from a refusal, an untrusted certificate,
// or another login with the same resource: these end the program with 1.
#pragma once

#include "examples/Example.h"
#include "quorix/base/Mask.h"

namespace example {

class EchoBot : public SessionEvents {
public:
    // Lets one answer on `session`, and connects it.
    static void Start(cSession& session) {
        session.LoginTimeout(20);
        session.ReconnectInterval(5);
        session.ReconnectAttempts(INT16_MAX);
        session.Advise(std::make_shared<EchoBot>(session));
        session.Connect();
    }

    // Holds the session by reference: one that it owned would own it in turn, and neither would ever end.
    explicit EchoBot(cSession& session) : session_(session) {}

    void OnAuthorized() override {
        isLoggedIn_ = true;
        Say({u"logged in as ", session_.MyJid()});
        session_.SendMyPresence();
    }

    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        if (message->MSG_Type() == MSG_GroupChat || !message->HasBody()) return;
        session_.CreateMessage(message->FromJid(), message->MSG_Type(), message->Body(), u"")->SendMessage();
    }

    void OnError(const NodePtr&, StringView from, std::int16_t code, StringView why) override {
        Say({u"error ", ToString(code), u" from ", from, u": ", why});
        const bool isOwn = from == session_.ServerAddress();
        const bool isRefusal = !isLoggedIn_ && code != kTimeout;
        if (isOwn && (isRefusal || why.starts_with(u"conflict"))) Finish(1);
    }

    void OnSocketError(const NodePtr&, StringView why, std::int16_t number) override {
        Say({u"connection: ", why});
        if (number == kNotTrusted) Finish(1);
    }

    void OnDisConnected() override {
        isLoggedIn_ = false;
        Say({u"disconnected"});
    }

    // The traffic holds passwords and what is as good as one; a log does not.
    void OnIncomingXML(StringView xml) override { Say({u"<< ", MaskSecrets(xml)}); }
    void OnOutgoingXML(StringView xml) override { Say({u">> ", MaskSecrets(xml)}); }

private:
    static constexpr std::int16_t kTimeout = 408;
    static constexpr std::int16_t kNotTrusted = 101;

    cSession& session_;
    bool isLoggedIn_ = false;
};

}  // namespace example
