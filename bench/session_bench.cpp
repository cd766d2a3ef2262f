// From bytes to events, and back: inbound stanzas, outbound messages, a login.
#include <benchmark/benchmark.h>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix {
namespace {

constexpr std::size_t kChunk = 2000;

// Reads every field of what it is given.
class Reader : public SessionEvents {
public:
    void OnIncomingXML(StringView XML) override { characters += XML.size(); }
    void OnMessage(const std::shared_ptr<cMessage>& m) override {
        characters += m->ID().size() + m->ToJID().size() + m->FromJid().size() + m->Body().size() +
                      m->Subject().size() + m->Thread().size() + m->MSG_Type();
        ++messages;
    }
    std::size_t characters = 0;
    std::int64_t messages = 0;
};

struct Line {
    Line() {
        session->Advise(reader);
        session->ServerAddress(u"s");
        session->username(u"u");
        session->Password(u"p");
        session->Resource(u"r");
    }

    void LogIn() {
        session->Connect();
        env.DoEvents();
        Say("<stream:stream id='1'>");
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
    std::shared_ptr<Reader> reader = std::make_shared<Reader>();
};

std::string MessageOf(std::size_t size) {
    std::string message =
        "<message type='chat' id='m1' to='juliet@example.org/balcony' from='romeo@example.net/orchard'>"
        "<subject>s</subject><thread>t1</thread><body></body></message>";
    message.insert(message.find("</body>"), std::string(size - message.size(), 'x'));
    return message;
}

// `state.range(0)` stanzas of `state.range(1)` bytes, written back to back. The sizes divide no chunk, so
// that stanzas begin and end everywhere in it.
void InboundFlood(benchmark::State& state, eMode mode) {
    Line line;
    line.session->Mode(mode);
    line.LogIn();
    std::string message = MessageOf(static_cast<std::size_t>(state.range(1)));
    std::string flood;
    for (std::int64_t i = 0; i < state.range(0); ++i) flood += message;
    for (auto _ : state) line.Say(flood);
    if (line.reader->messages != static_cast<std::int64_t>(state.iterations()) * state.range(0)) {
        state.SkipWithError("messages were lost");
    }
    state.SetItemsProcessed(line.reader->messages);
}
BENCHMARK_CAPTURE(InboundFlood, Classic, KV_Classic)
    ->Args({100000, 207})
    ->Args({10000, 1313})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(InboundFlood, Modern, KV_Modern)
    ->Args({100000, 207})
    ->Args({10000, 1313})
    ->Unit(benchmark::kMillisecond);

// One stanza of `state.range(0)` bytes in chunks of 2000.
void InboundLongStanza(benchmark::State& state) {
    Line line;
    line.LogIn();
    std::string stanza = "<message from='a@b'><body>" +
                         std::string(static_cast<std::size_t>(state.range(0)), 'x') + "</body></message>";
    for (auto _ : state) line.Say(stanza);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(InboundLongStanza)->RangeMultiplier(2)->Range(1 << 20, 64 << 20)->Unit(benchmark::kMillisecond);

void OutboundMessages(benchmark::State& state) {
    Line line;
    line.LogIn();
    for (auto _ : state) {
        line.session
            ->CreateMessage(u"juliet@example.org", MSG_Chat, u"Grüße, und was sonst noch so kommt.", u"s")
            ->SendMessage();
        line.env.Peer().TakeHeard();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(OutboundMessages);

void Login(benchmark::State& state) {
    Line line;
    for (auto _ : state) line.LogIn();
}
BENCHMARK(Login);

}  // namespace
}  // namespace quorix
