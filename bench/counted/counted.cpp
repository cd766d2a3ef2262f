// One fixed piece of work of each main path, for counting its instructions: tools/bench_check.sh.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "quorix/base/WireText.h"
#include "quorix/im/cPresenceItem.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace {

using namespace quorix;

constexpr std::size_t kChunk = 2000;
constexpr int kStanzas = 2000;
constexpr int kMessages = 2000;
constexpr int kContacts = 4000;

// Reads what applications read.
class Reader : public SessionEvents {
public:
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        read += message->FromJid().size() + message->Body().size() + message->MSG_Type();
        ++stanzas;
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool, StringView, std::int32_t,
                    const NodePtr&) override {
        read += item->JID().size() + item->Status().size();
        ++stanzas;
    }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>&,
                      const NodePtr&) override {
        read += item->JID().size() + item->NickName().size();
        ++stanzas;
    }
    bool WantsWireText() const override { return false; }

    std::size_t read = 0;
    int stanzas = 0;
};

struct Client {
    explicit Client(eMode mode) {
        session->Mode(mode);
        session->Advise(reader);
        session->ServerAddress(u"localhost");
        session->Port(5222);
        session->username(u"user");
        session->Password(u"secret");
        session->Resource(u"bench");
        session->Connect();
        env.DoEvents();
        Hear("<stream:stream id='1' xmlns:stream='s' xmlns='jabber:client'>");
        Hear("<iq type='result'><query xmlns='jabber:iq:auth'><digest/></query></iq>");
        Hear("<iq type='result' id='kv_login'/>");
    }

    void Hear(std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(kChunk, bytes.size()))) {
            env.Peer().Say(bytes.substr(0, kChunk));
            env.DoEvents();
        }
        env.Peer().TakeHeard();
    }

    testkit::DeterministicEnvironment env;
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Reader> reader = std::make_shared<Reader>();
};

// Seven messages, two presences and one roster push of every ten, their sizes no divisors of a chunk.
std::string Flood() {
    std::string flood;
    for (int i = 0; i < kStanzas; ++i) {
        std::string contact = "friend" + std::to_string(i * 7 % 200) + "@localhost";
        std::string length(static_cast<std::size_t>(20 + i % 61), 'x');
        if (i % 10 < 7) {
            flood += "<message from='" + contact + "/home' to='user@localhost/bench' id='m" +
                     std::to_string(i) + "' type='chat'><body>" + length +
                     " \xC3\xA9 &amp;</body><x xmlns='jabber:x:event'><composing/></x></message>";
        } else if (i % 10 < 9) {
            flood += "<presence from='" + contact + "/home'><show>away</show><status>" + length +
                     "</status><priority>5</priority></presence>";
        } else {
            flood += "<iq type='set' id='p" + std::to_string(i) +
                     "'><query xmlns='jabber:iq:roster'><item jid='" + contact + "' name='" + length +
                     "' subscription='both'><group>Friends</group></item></query></iq>";
        }
    }
    return flood;
}

std::string Roster() {
    std::string roster = "<iq type='result' id='doroster_1'><query xmlns='jabber:iq:roster'>";
    for (int i = 0; i < kContacts; ++i) {
        std::string number = std::to_string(i);
        roster += "<item jid='contact" + number + "@example.org' name='Contact " + number +
                  "' subscription='both'><group>Friends</group></item>";
    }
    return roster + "</query></iq>";
}

// What is counted, by its name.
extern "C" __attribute__((noinline)) void CountedHear(Client& client, const std::string& bytes) {
    client.Hear(bytes);
}

extern "C" __attribute__((noinline)) int CountedSend(Client& client) {
    int sent = 0;
    for (int i = 0; i < kMessages; ++i) {
        client.session
            ->CreateMessage(u"juliet@example.org", MSG_Chat, u"Grüße & was sonst noch so kommt.", u"")
            ->SendMessage();
        sent += client.env.Peer().TakeHeard().ends_with("</message>") ? 1 : 0;
    }
    return sent;
}

bool HearAll(eMode mode, const std::string& bytes, int stanzas) {
    Client client(mode);
    CountedHear(client, bytes);
    return client.reader->stanzas == stanzas;
}

bool Send(eMode mode) {
    Client client(mode);
    return CountedSend(client) == kMessages;
}

bool Run(std::string_view path) {
    if (path == "inbound-classic") return HearAll(KV_Classic, Flood(), kStanzas);
    if (path == "inbound-modern") return HearAll(KV_Modern, Flood(), kStanzas);
    if (path == "outbound-classic") return Send(KV_Classic);
    if (path == "outbound-modern") return Send(KV_Modern);
    return path == "roster" && HearAll(KV_Modern, Roster(), kContacts);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && Run(argv[1])) return 0;
    std::fprintf(stderr, "%s: no such path, or not everything arrived\n", argc > 1 ? argv[1] : "?");
    return 1;
}
