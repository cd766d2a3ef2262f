// What large inputs take at most: how much the resident memory of a process grows, counted in one of its own.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "bench/Client.h"

namespace quorix {
namespace {

// "VmRSS" is what is resident now, "VmHWM" the most that was.
double Megabytes(std::string_view name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word && word != std::string(name) + ':') continue;
    status >> kilobytes;
    return kilobytes / 1024;
}

// Of `run`, in a child of this process; negative when it failed.
double GrowthOf(const std::function<bool()>& run) {
    malloc_trim(0);  // what is free here would hide what the child takes
    int ends[2] = {};
    if (pipe(ends) != 0) return -1;
    pid_t child = fork();
    if (child == 0) {
        double before = Megabytes("VmRSS");
        double growth = run() ? Megabytes("VmHWM") - before : -1;
        _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
    }
    close(ends[1]);
    double growth = -1;
    if (read(ends[0], &growth, sizeof growth) != sizeof growth) growth = -1;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return growth;
}

void Report(benchmark::State& state, const std::function<bool()>& run) {
    for (auto _ : state) {
        double growth = GrowthOf(run);
        if (growth < 0) state.SkipWithError("not everything arrived");
        state.counters["peak_MB"] = growth;
    }
}

// One stanza of `state.range(0)` MB.
void LongStanza(benchmark::State& state, eMode mode, bool wireText) {
    Report(state, [&] {
        Client client(mode, wireText);
        client.session->MaxStanzaSize(0);
        client.LogIn();
        client.Say("<message from='a@b' type='chat'><body>");
        const std::string piece(kChunk, 'x');
        const std::size_t size = static_cast<std::size_t>(state.range(0)) << 20U;
        std::size_t said = 0;
        for (; said < size; said += kChunk) client.Say(piece);
        client.Say("</body></message>");
        return client.reader->messages == 1 && client.reader->characters >= said;
    });
}
BENCHMARK_CAPTURE(LongStanza, Classic, KV_Classic, false)->Arg(16)->Arg(64)->Iterations(1);
BENCHMARK_CAPTURE(LongStanza, ClassicWireText, KV_Classic, true)->Arg(16)->Arg(64)->Iterations(1);
BENCHMARK_CAPTURE(LongStanza, Modern, KV_Modern, false)->Arg(16)->Arg(64)->Iterations(1);
BENCHMARK_CAPTURE(LongStanza, ModernWireText, KV_Modern, true)->Arg(16)->Arg(64)->Iterations(1);

// A roster of `state.range(0)` contacts, in one stanza.
void LargeRoster(benchmark::State& state, eMode mode, bool wireText) {
    Report(state, [&] {
        Client client(mode, wireText);
        client.LogIn();
        client.Say("<iq type='result' id='doroster_1'><query xmlns='jabber:iq:roster'>");
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            std::string number = std::to_string(i);
            client.Say("<item jid='contact" + number + "@example.org' name='Contact " + number +
                       "' subscription='both'><group>Friends</group></item>");
        }
        client.Say("</query></iq>");
        return client.reader->contacts == state.range(0);
    });
}
BENCHMARK_CAPTURE(LargeRoster, Classic, KV_Classic, false)->Arg(80000)->Iterations(1);
BENCHMARK_CAPTURE(LargeRoster, ClassicWireText, KV_Classic, true)->Arg(80000)->Iterations(1);
BENCHMARK_CAPTURE(LargeRoster, Modern, KV_Modern, false)->Arg(80000)->Iterations(1);
BENCHMARK_CAPTURE(LargeRoster, ModernWireText, KV_Modern, true)->Arg(80000)->Iterations(1);

}  // namespace
}  // namespace quorix
