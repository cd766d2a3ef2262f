// Long replies of the services, from text to events. Each at two sizes, so that anything worse than linear
// shows in one run.
#include <benchmark/benchmark.h>

#include "quorix/services/Agents.h"
#include "quorix/services/Browse.h"
#include "quorix/services/Search.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"
#include "tests/unit/services/FakeLink.h"

namespace quorix {
namespace {

using tests::FakeLink;
using tests::StanzaOf;

String Repeat(std::int64_t count, const std::function<String(StringView)>& item) {
    String text;
    for (std::int64_t i = 0; i < count; ++i) text += item(ToString(i));
    return text;
}

// Reads what an application would read.
class Reader : public SessionEvents {
public:
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& room, const NodePtr&) override {
        benchmark::DoNotOptimize(room->JID());
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& item, StringView, const NodePtr&) override {
        benchmark::DoNotOptimize(item->JID());
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& results) override {
        for (const auto& hit : *results) {
            for (const auto& field : *hit->Fields()) benchmark::DoNotOptimize(field->FieldData());
        }
    }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr&) override {
        benchmark::DoNotOptimize(agent->JID());
    }
};

String BrowseReply(StringView id, std::int64_t count) {
    return Concat({u"<iq type='result' from='c' id='", id, u"'><conference xmlns='jabber:iq:browse'>",
                   Repeat(count,
                          [](StringView i) {
                              return Concat(
                                  {u"<item xmlns='jabber:iq:browse' category='conference' jid='room", i,
                                   u"@conference.example.org' name='Room ", i, u"' type='public'/>"});
                          }),
                   u"</conference></iq>"});
}

void Browse(benchmark::State& state, StringView id) {
    String reply = BrowseReply(id, state.range(0));
    FakeLink link(std::make_shared<Reader>());
    for (auto _ : state) HandleBrowse(link, StanzaOf(reply));
}

void RoomsOfAServer(benchmark::State& state) { Browse(state, u"gcsrv_1"); }
void EntriesOfARoom(benchmark::State& state) { Browse(state, u"gcroom_1"); }

void SearchHits(benchmark::State& state) {
    String fields = Repeat(10, [](StringView i) {
        return Concat({u"<field var='f", i, u"'><value>value ", i, u"</value></field>"});
    });
    String reply = Concat({u"<iq type='result'><query xmlns='jabber:iq:search'><x xmlns='jabber:x:data'>",
                           Repeat(state.range(0),
                                  [&](StringView i) {
                                      return Concat({u"<item><field var='jid'><value>user", i,
                                                     u"@example.org</value></field>", fields, u"</item>"});
                                  }),
                           u"</x></query></iq>"});
    FakeLink link(std::make_shared<Reader>());
    for (auto _ : state) Search().Handle(link, StanzaOf(reply));
}

void AgentList(benchmark::State& state) {
    String reply =
        Concat({u"<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'>",
                Repeat(state.range(0),
                       [](StringView i) {
                           return Concat({u"<agent jid='agent", i, u".example.org'><name>Agent ", i,
                                          u"</name><service>x</service><register/><search/></agent>"});
                       }),
                u"</query></iq>"});
    auto link = std::make_shared<FakeLink>(std::make_shared<Reader>());
    for (auto _ : state) Agents(std::make_shared<cSearchFields>()).HandleList(link, StanzaOf(reply));
}

// Every field is looked up before it is added.
void RegistrationForm(benchmark::State& state) {
    String reply = Concat({u"<iq type='result' from='a'><query xmlns='jabber:iq:register'>",
                           Repeat(state.range(0),
                                  [](StringView i) {
                                      return Concat({u"<field", i, u">value</field", i, u">"});
                                  }),
                           u"</query></iq>"});
    auto link = std::make_shared<FakeLink>(std::make_shared<Reader>());
    for (auto _ : state) {
        Agents agents(std::make_shared<cSearchFields>());
        agents.HandleList(link, StanzaOf(u"<iq><query><agent jid='a'/></query></iq>"));
        agents.HandleRegistrationForm(StanzaOf(reply));
    }
}

BENCHMARK(RoomsOfAServer)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(EntriesOfARoom)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchHits)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(AgentList)->Arg(2'500)->Arg(5'000)->Unit(benchmark::kMillisecond);
BENCHMARK(RegistrationForm)->Arg(10'000)->Arg(20'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorix
