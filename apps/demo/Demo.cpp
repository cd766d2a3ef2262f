#include "apps/demo/Demo.h"

#include <cstdio>

#include "apps/demo/ServiceTour.h"
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/Timer.h"
#include "quorix/session/cSession.h"
#include "testkit/LoopbackServer.h"

namespace quorix::demo {

void Say(StringView text) { std::printf("%s\n", Utf8FromText(text).c_str()); }

namespace {

constexpr std::int32_t kTimeLimit = 10000;  // milliseconds

// The steps, each of which leads to the next: the session's events drive them.
class Demo : public SessionEvents {
public:
    Demo(cSession& session, testkit::LoopbackServer& server)
        : session_(session),
          server_(server),
          tour_(std::make_shared<ServiceTour>(session, [this] { DropLine(); })) {
        session_.Advise(tour_);
    }

    bool Succeeded() const { return succeeded_; }

    void OnIncomingXML(StringView /*XML*/) override {
        if (session_.SessionID() == streamId_ || session_.SessionID().empty()) return;
        streamId_ = session_.SessionID();
        Say(Concat({u"stream      opened, id ", streamId_}));
    }

    void OnAuthorized() override {
        ++logins_;
        Say(Concat({u"login       ", session_.Sequence() > 0 ? u"by zero-knowledge" : u"by digest",
                    u" accepted for ", session_.MyJid(), u"/", session_.Resource()}));
        if (logins_ == 2) return Finish();
        session_.FetchRoster();
    }

    void OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                      const std::shared_ptr<cPresenceItem>& /*item*/,
                      const NodePtr& /*XMLElement*/) override {
        Say(Concat({u"roster      ", RosterItem->NickName(), u" <", RosterItem->JID(), u">"}));
    }

    void OnRosterEnd() override {
        Say(u"presence    sent: ready to chat");
        session_.Status(u"ready to chat");
        session_.SendMyPresence();
    }

    void OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                    StringView /*ShowType*/, std::int32_t ItemType, const NodePtr& /*XMLElement*/) override {
        if (ItemType != KV_RosterItem) return;  // somebody in a room
        Say(Concat({u"presence    received: ", PresenceItem->JID(), bAvailable ? u" is online: " : u" left: ",
                    PresenceItem->Status()}));
        Say(u"message     sent: Grüße aus der Schleife");
        session_.CreateMessage(PresenceItem->JID(), MSG_Chat, u"Grüße aus der Schleife", {})->SendMessage();
    }

    void OnMessage(const std::shared_ptr<cMessage>& Message) override {
        Say(Concat({u"message     received: ", Message->Body()}));
        tour_->Begin();
    }

    void OnDisConnected() override {
        Say(finished_ ? u"disconnect  done" : u"disconnect  seen; connecting again in 1 second");
        if (!finished_) return;
        succeeded_ = true;
        MessageLoop::Quit();
    }

    void OnSocketError(const NodePtr& /*XMLElement*/, StringView Description,
                       std::int16_t /*Code*/) override {
        Say(Concat({u"error       ", Description}));
    }

private:
    // The next login finds zero-knowledge on offer, and prefers it.
    void DropLine() {
        *server_.FindAccount(session_.username()) = {
            .password = session_.Password(), .sequence = 7, .token = u"salt"};
        Say(u"line        dropped by the server");
        server_.DropConnections();
    }

    void Finish() {
        finished_ = true;
        Say(u"disconnect  asked for");
        session_.Disconnect();
    }

    cSession& session_;
    testkit::LoopbackServer& server_;
    std::shared_ptr<ServiceTour> tour_;
    String streamId_;
    int logins_ = 0;
    bool finished_ = false;
    bool succeeded_ = false;
};

void GiveUp() {
    Say(u"timeout     not every step was seen");
    MessageLoop::Quit();
}

}  // namespace

bool RunDemo() {
    auto server = testkit::LoopbackServer::Create();
    server->AddAccount(u"romeo", {.password = u"balcony"});
    std::uint16_t port = server->Start();

    std::shared_ptr<cSession> session = cSession::Create();
    session->Mode(KV_Modern);
    auto demo = std::make_shared<Demo>(*session, *server);
    session->Advise(demo);
    session->ServerAddress(u"127.0.0.1");  // a bare container knows no "localhost"
    session->Port(static_cast<std::int16_t>(port));
    session->username(u"romeo");
    session->Password(u"balcony");
    session->Resource(u"demo");
    session->ReconnectInterval(1);

    Timer limit;
    limit.Start(kTimeLimit, GiveUp);
    Say(Concat({u"connect     to ", session->ServerAddress(), u":", ToString(port)}));
    session->Connect();
    MessageLoop::Run();
    return demo->Succeeded();
}

}  // namespace quorix::demo
