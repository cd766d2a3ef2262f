#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/message.h>
#include <gloox/messagehandler.h>
#include <gloox/presencehandler.h>
#include <gloox/rosteritem.h>
#include <gloox/rosterlistener.h>
#include <gloox/rostermanager.h>

#include "bench/peers/Tally.h"

namespace {

class Client : public gloox::ConnectionListener,
               public gloox::MessageHandler,
               public gloox::PresenceHandler,
               public gloox::RosterListener {
public:
    explicit Client(const peers::Task& task) : task_(task) {
        client_.setTls(gloox::TLSDisabled);
        client_.setSasl(false);
        client_.setCompression(false);
        client_.setServer("127.0.0.1");
        client_.setPort(task.port);
        client_.registerConnectionListener(this);
        client_.registerMessageHandler(this);
        client_.registerPresenceHandler(this);
        client_.rosterManager()->registerRosterListener(this, false);
    }

    void Run() {
        client_.connect(false);
        while (!isUp_) client_.recv(1000);
        if (!task_.receives) Send();
        while (true) client_.recv(1000000);
    }

    void onConnect() override {
        isUp_ = true;
        tally_.Begin();
    }
    void onDisconnect(gloox::ConnectionError) override { std::exit(1); }
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }
    void handleMessage(const gloox::Message& message, gloox::MessageSession*) override {
        const std::string body = message.body();
        tally_.Message(message.from().full().size(), body.size(), message.subtype() == gloox::Message::Chat);
        if (body == "END") tally_.End();
    }
    void handlePresence(const gloox::Presence& presence) override {
        tally_.Presence(presence.from().full().size(), presence.subtype() == gloox::Presence::Away);
    }
    void handleItemAdded(const gloox::JID& jid) override { Read(jid); }
    void handleItemUpdated(const gloox::JID& jid) override { Read(jid); }

    void handleItemSubscribed(const gloox::JID&) override {}
    void handleItemRemoved(const gloox::JID&) override {}
    void handleItemUnsubscribed(const gloox::JID&) override {}
    void handleRoster(const gloox::Roster&) override {}
    void handleRosterPresence(const gloox::RosterItem&, const std::string&, gloox::Presence::PresenceType,
                              const std::string&) override {}
    void handleSelfPresence(const gloox::RosterItem&, const std::string&, gloox::Presence::PresenceType,
                            const std::string&) override {}
    bool handleSubscriptionRequest(const gloox::JID&, const std::string&) override { return true; }
    bool handleUnsubscriptionRequest(const gloox::JID&, const std::string&) override { return true; }
    void handleNonrosterPresence(const gloox::Presence&) override {}
    void handleRosterError(const gloox::IQ&) override {}

private:
    void Read(const gloox::JID& jid) {
        const gloox::RosterItem* item = client_.rosterManager()->getRosterItem(jid);
        tally_.Contact(item != nullptr && !item->name().empty() && item->subscription() == gloox::S10nBoth);
    }

    void Send() {
        for (int i = 0; i < task_.count; ++i) {
            client_.send(
                gloox::Message(gloox::Message::Chat, gloox::JID(peers::Addressee(i)), peers::Body(i)));
        }
    }

    const peers::Task& task_;
    gloox::Client client_{gloox::JID("user@localhost/bench"), "pass"};
    peers::Tally tally_;
    bool isUp_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    peers::Task task(argc, argv);
    Client(task).Run();
}
