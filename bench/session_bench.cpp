// From bytes to events, and back: inbound stanzas, outbound messages, a login.
#include <benchmark/benchmark.h>

#include "bench/Client.h"

namespace quorix {
namespace {

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
    Client client(mode);
    client.LogIn();
    std::string message = MessageOf(static_cast<std::size_t>(state.range(1)));
    std::string flood;
    for (std::int64_t i = 0; i < state.range(0); ++i) flood += message;
    for (auto _ : state) client.Say(flood);
    if (client.reader->messages != static_cast<std::int64_t>(state.iterations()) * state.range(0)) {
        state.SkipWithError("messages were lost");
    }
    state.SetItemsProcessed(client.reader->messages);
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
    Client client(KV_Classic);
    client.LogIn();
    std::string stanza = "<message from='a@b'><body>" +
                         std::string(static_cast<std::size_t>(state.range(0)), 'x') + "</body></message>";
    for (auto _ : state) client.Say(stanza);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(InboundLongStanza)->RangeMultiplier(2)->Range(1 << 20, 64 << 20)->Unit(benchmark::kMillisecond);

void OutboundMessages(benchmark::State& state) {
    Client client(KV_Classic);
    client.LogIn();
    for (auto _ : state) {
        client.session
            ->CreateMessage(u"juliet@example.org", MSG_Chat, u"Grüße, und was sonst noch so kommt.", u"s")
            ->SendMessage();
        client.env.Peer().TakeHeard();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(OutboundMessages);

void Login(benchmark::State& state) {
    Client client(KV_Classic);
    for (auto _ : state) client.LogIn();
}
BENCHMARK(Login);

}  // namespace
}  // namespace quorix
