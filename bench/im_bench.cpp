// What messages, presence and the roster cost beyond parsing, and that the cost does not grow with the
// tables.
#include <benchmark/benchmark.h>

#include <memory>

#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/im/RosterTable.h"
#include "quorix/link/StanzaError.h"

namespace quorix {
namespace {

// An application that reads what it is told of.
class Reader : public SessionEvents {
public:
    std::size_t read = 0;
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        read += message->Body().size() + message->FromJid().size();
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool, StringView, std::int32_t,
                    const NodePtr&) override {
        read += item->JID().size() + item->Status().size();
    }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item, const std::shared_ptr<cPresenceItem>&,
                      const NodePtr&) override {
        read += item->JID().size() + item->NickName().size();
    }
};

class Session : public SessionLink, public std::enable_shared_from_this<Session> {
public:
    Reader reader;
    PresenceTable presences;
    RosterTable roster;

    void Presence(const ParsedXmlPtr& node) { HandlePresence(shared_from_this(), presences, Stanza(node)); }
    void Message(const ParsedXmlPtr& node) { HandleMessage(shared_from_this(), Stanza(node)); }
    void Iq(const ParsedXmlPtr& node) { roster.ParseRoster(shared_from_this(), presences, Stanza(node)); }

    StanzaError ErrorOf(const Stanza& stanza) const override { return ErrorAsSent(stanza); }
    const TextRules& Text() const override { return ClassicText(); }
    void SendXML(StringView) override {}
    void LetOthersRun() override {}
    bool IsConnected() const override { return true; }
    String GetNextID() override { return u"KV_1"; }
    String ServerAddress() const override { return u"example.org"; }
    String username() const override { return u"me"; }
    String Password() const override { return u"secret"; }
    String Resource() const override { return u"Home"; }
    String MyJid() const override { return u"me@example.org"; }
    eItemType FindItemType(StringView jid) override {
        return roster.Contains(jid) ? KV_RosterItem : KV_Unknown;
    }
    bool LeaveRoom(StringView, StringView) override { return false; }
    void ForEachSink(const std::function<void(SessionEvents&)>& raise) override { raise(reader); }
};

ParsedXmlPtr Node(StringView xml) { return ParsedXml::FromText(xml); }

String Number(std::int64_t i) { return ToString(i); }

String Item(std::int64_t i, StringView subscription) {
    return Concat({u"<item jid='contact", Number(i), u"@example.org' name='Contact ", Number(i),
                   u"' subscription='", subscription, u"'><group>Friends</group></item>"});
}

String Roster(StringView type, StringView items) {
    return Concat({u"<iq type='", type, u"'><query xmlns='jabber:iq:roster'>", items, u"</query></iq>"});
}

void MessageReceived(benchmark::State& state) {
    auto session = std::make_shared<Session>();
    ParsedXmlPtr node = Node(
        u"<message from='ann@example.org/Home' to='me@example.org' type='chat' id='m1'><body>Hello there, "
        u"how are you?</body><x xmlns='jabber:x:event'><composing/></x></message>");
    for (auto _ : state) session->Message(node);
}
BENCHMARK(MessageReceived);

void MessageSent(benchmark::State& state) {
    auto session = std::make_shared<Session>();
    for (auto _ : state)
        CreateMessage(session, u"ann@example.org", MSG_Chat, u"Hello there", u"")->SendMessage();
}
BENCHMARK(MessageSent);

// Presences of as many senders as the argument says: arriving, again and again, and leaving.
template <class From>
void Presences(benchmark::State& state, From from) {
    std::vector<ParsedXmlPtr> arrivals;
    std::vector<ParsedXmlPtr> departures;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        String start = Concat({u"<presence from='", from(i)});
        arrivals.push_back(
            Node(Concat({start, u"'><status>here</status><priority>5</priority></presence>"})));
        departures.push_back(Node(Concat({start, u"' type='unavailable'/>"})));
    }
    for (auto _ : state) {
        auto session = std::make_shared<Session>();
        for (int round = 0; round < 2; ++round) {
            for (const ParsedXmlPtr& node : arrivals) session->Presence(node);
        }
        for (const ParsedXmlPtr& node : departures) session->Presence(node);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * 3);
}

void PresencesOfManyContacts(benchmark::State& state) {
    Presences(state, [](std::int64_t i) { return Concat({u"contact", Number(i), u"@example.org/Home"}); });
}
BENCHMARK(PresencesOfManyContacts)->Arg(20)->Arg(20000)->Arg(40000)->Unit(benchmark::kMillisecond);

void PresencesOfOneContact(benchmark::State& state) {
    Presences(state, [](std::int64_t i) { return Concat({u"ann@example.org/resource", Number(i)}); });
}
BENCHMARK(PresencesOfOneContact)->Arg(20000)->Arg(40000)->Unit(benchmark::kMillisecond);

// The roster in one stanza, then a change and a removal of each contact.
void RosterAndPushes(benchmark::State& state) {
    String all;
    std::vector<ParsedXmlPtr> pushes;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        all += Item(i, u"both");
        pushes.push_back(Node(Roster(u"set", Item(i, u"to"))));
    }
    for (std::int64_t i = 0; i < state.range(0); ++i)
        pushes.push_back(Node(Roster(u"set", Item(i, u"remove"))));
    ParsedXmlPtr result = Node(Roster(u"result", all));
    for (auto _ : state) {
        auto session = std::make_shared<Session>();
        session->Iq(result);
        for (const ParsedXmlPtr& push : pushes) session->Iq(push);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * 3);
}
BENCHMARK(RosterAndPushes)->Arg(20)->Arg(20000)->Arg(40000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorix
