// Long replies of the services, from bytes in chunks of 2000 to events read. Each at two sizes, so that
// anything worse than linear shows in one run.
#include <benchmark/benchmark.h>

#include <functional>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix {
namespace {

constexpr std::size_t kChunk = 2000;

// Reads what an application would read, and counts the records.
class Reader : public SessionEvents {
public:
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& room, const NodePtr&) override {
        Read(room->JID());
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& item, StringView, const NodePtr&) override {
        Read(item->JID());
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& results) override {
        for (const auto& hit : *results) {
            for (const auto& field : *hit->Fields()) benchmark::DoNotOptimize(field->FieldData());
            Read(hit->SearchItem());
        }
    }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr&) override {
        Read(agent->JID());
    }

    std::int64_t records = 0;

private:
    void Read(const String& jid) {
        benchmark::DoNotOptimize(jid);
        ++records;
    }
};

class Line {
public:
    Line() {
        session->Advise(reader);
        session->ServerAddress(u"s");
        session->Connect();
        env_.DoEvents();
        Say("<stream:stream id='1'>");
    }

    void Say(std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(kChunk, bytes.size()))) {
            env_.Peer().Say(bytes.substr(0, kChunk));
            env_.DoEvents();
        }
        env_.Peer().TakeHeard();
    }

private:
    testkit::DeterministicEnvironment env_;

public:
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Reader> reader = std::make_shared<Reader>();
};

using Text = std::function<std::string(const std::string& number)>;

std::string Repeat(std::int64_t count, const Text& item) {
    std::string text;
    for (std::int64_t i = 0; i < count; ++i) text += item(std::to_string(i));
    return text;
}

std::string Reply(const std::string& attributes, const std::string& content) {
    return "<iq type='result' from='c'" + attributes + ">" + content + "</iq>";
}

// `reply` again and again; each time `state.range(0)` records must come.
void Measure(benchmark::State& state, const std::string& reply) {
    Line line;
    for (auto _ : state) {
        line.session->Agents().Clear();
        line.Say(reply);
    }
    if (line.reader->records != static_cast<std::int64_t>(state.iterations()) * state.range(0)) {
        state.SkipWithError("records were lost");
    }
}

std::string Rooms(std::int64_t count) {
    return "<conference xmlns='jabber:iq:browse'>" +
           Repeat(count,
                  [](const std::string& i) {
                      return "<item xmlns='jabber:iq:browse' category='conference' type='public' jid='room" +
                             i + "@conference.example.org' name='Room " + i + "'/>";
                  }) +
           "</conference>";
}

void RoomsOfAServer(benchmark::State& state) {
    Measure(state, Reply(" id='gcsrv_1'", Rooms(state.range(0))));
}
void EntriesOfARoom(benchmark::State& state) {
    Measure(state, Reply(" id='gcroom_1'", Rooms(state.range(0))));
}

void SearchHits(benchmark::State& state) {
    std::string fields = Repeat(10, [](const std::string& i) {
        return "<field var='f" + i + "'><value>value " + i + "</value></field>";
    });
    std::string hits = Repeat(state.range(0), [&](const std::string& i) {
        return "<item><field var='jid'><value>user" + i + "@example.org</value></field>" + fields + "</item>";
    });
    Measure(state,
            Reply("", "<query xmlns='jabber:iq:search'><x xmlns='jabber:x:data'>" + hits + "</x></query>"));
}

void AgentList(benchmark::State& state) {
    std::string agents = Repeat(state.range(0), [](const std::string& i) {
        return "<agent jid='agent" + i + ".example.org'><name>Agent " + i +
               "</name><service>x</service><register/><search/></agent>";
    });
    Measure(state, Reply(" id='fullagents'", "<query xmlns='jabber:iq:agents'>" + agents + "</query>"));
}

// Every field is looked up before it is added, to an agent that is new each time.
void RegistrationForm(benchmark::State& state) {
    std::string fields =
        Repeat(state.range(0), [](const std::string& i) { return "<field" + i + ">value</field" + i + ">"; });
    std::string form = Reply("", "<query xmlns='jabber:iq:register'>" + fields + "</query>");
    Line line;
    for (auto _ : state) {
        line.session->Agents().Clear();
        line.Say(
            "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent "
            "jid='c'/></query></iq>");
        line.Say(form);
        if (line.session->Agents().Item(1)->Fields().Count() != state.range(0)) {
            state.SkipWithError("fields were lost");
        }
    }
}

BENCHMARK(RoomsOfAServer)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(EntriesOfARoom)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchHits)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(AgentList)->Arg(2'500)->Arg(5'000)->Unit(benchmark::kMillisecond);
BENCHMARK(RegistrationForm)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorix
