// VARIANT: classic or modern, with "-wire" for an application that wants the wire text.
#include "bench/peers/Tally.h"
#include "quorix/base/WireText.h"
#include "quorix/im/cMessage.h"
#include "quorix/im/cPresenceItem.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/session/cSession.h"

namespace {

using namespace quorix;

std::size_t Utf8Size(StringView text) {
    std::size_t size = text.size();
    for (char16_t c : text) size += (c >= 0x80 ? 1U : 0U) + (c >= 0x800 ? 1U : 0U);
    return size;
}

class Client : public SessionEvents {
public:
    explicit Client(const peers::Task& task) : task_(task) {
        session_->ServerAddress(u"localhost");
        session_->Port(static_cast<std::int16_t>(task.port));
        session_->username(u"user");
        session_->Password(u"pass");
        session_->Resource(u"bench");
        if (task.variant.starts_with("modern")) session_->Mode(KV_Modern);
    }
    cSession& Session() { return *session_; }

    void OnAuthorized() override {
        tally_.Begin();
        if (task_.receives) return session_->SendXML(u"<presence/>");
        MessageLoop::Quit();
    }
    void OnDisConnected() override { std::exit(1); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        const String body = message->Body();
        tally_.Message(Utf8Size(message->FromJid()), Utf8Size(body), message->MSG_Type() == MSG_Chat);
        if (body == u"END") tally_.End();
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool, StringView, std::int32_t,
                    const NodePtr&) override {
        tally_.Presence(Utf8Size(item->JID()) + 1 + Utf8Size(item->Resource()), item->ShowType() == KV_Away);
    }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>&,
                      const NodePtr&) override {
        tally_.Contact(!item->JID().empty() && !item->NickName().empty() && item->Subscription() == KV_Both);
    }
    void OnIncomingXML(StringView XML) override { wire_ += XML.size(); }
    bool WantsWireText() const override { return task_.variant.ends_with("-wire"); }

    void Send() {
        for (int i = 0; i < task_.count; ++i) {
            session_
                ->CreateMessage(TextFromUtf8(peers::Addressee(i)), MSG_Chat, TextFromUtf8(peers::Body(i)), {})
                ->SendMessage();
            if (i % 64 == 63) MessageLoop::DoEvents();
        }
    }

private:
    const peers::Task& task_;
    std::shared_ptr<cSession> session_ = cSession::Create();
    peers::Tally tally_;
    std::size_t wire_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    peers::Task task(argc, argv);
    auto client = std::make_shared<Client>(task);
    client->Session().Advise(client);
    client->Session().Connect();
    MessageLoop::Run();
    client->Send();
    MessageLoop::Run();
}
