#include <benchmark/benchmark.h>

#include "quorix/base/WireText.h"
#include "quorix/xml/StreamParser.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

namespace {

const String kMessage =
    u"<message from='juliet@capulet.example/balcony' to='romeo@montague.example/orchard' type='chat' "
    u"id='KV_17'>"
    u"<body>Art thou not Romeo, and a "
    u"Montague?</body><thread>e0ffe42b28561960c6b12b944a092794b9683a38</thread>"
    u"</message>";

template <class Node>
std::size_t ReadMessage(const Node& root) {
    return root.Attribute(u"from").size() + root.Attribute(u"to").size() + root.Attribute(u"id").size() +
           (root.AttributeIs(u"type", u"chat") ? 1U : 0U) + root.Child(u"body").Text().size() +
           root.Child(u"thread").Text().size();
}

String Roster(std::int64_t items) {
    String text = u"<query xmlns='jabber:iq:roster'>";
    for (std::int64_t i = 0; i < items; ++i) {
        text += u"<item jid='contact" + ToString(i) +
                u"@example.org' subscription='both'><group>Friends</group></item>";
    }
    return text + u"</query>";
}

void LoadAndRead(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        auto document = XmlDocument::Create();
        document->Load(kMessage);
        benchmark::DoNotOptimize(ReadMessage(document->Root()));
    }
}
BENCHMARK(LoadAndRead);

// Ten messages in one piece of a stream.
void ReadStream(benchmark::State& state) {
    std::string chunk;
    for (int i = 0; i < 10; ++i) chunk += BytesFromWire(kMessage);
    StreamParser parser(StreamParser::Bytes::Wire);
    parser.BeginInside();
    for ([[maybe_unused]] auto _ : state) {
        parser.Feed(chunk);
        while (parser.Next() == StreamParser::Event::Element) {
            benchmark::DoNotOptimize(ReadMessage(parser.Take()->Root()));
        }
    }
    state.SetItemsProcessed(state.iterations() * 10);
}
BENCHMARK(ReadStream);

void QueryAndSearch(benchmark::State& state) {
    cXML_Node node;
    node.xml(kMessage);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(node.getNode(u"//message[@type='chat']/body"));
        benchmark::DoNotOptimize(node.GetTag(u"thread"));
    }
}
BENCHMARK(QueryAndSearch);

void Serialize(benchmark::State& state) {
    auto document = XmlDocument::Create();
    document->Load(kMessage);
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(document->Xml());
}
BENCHMARK(Serialize);

void LoadRoster(benchmark::State& state) {
    String text = Roster(state.range(0));
    for ([[maybe_unused]] auto _ : state) {
        auto document = XmlDocument::Create();
        benchmark::DoNotOptimize(document->Load(text));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(LoadRoster)->Range(1250, 20000)->RangeMultiplier(2)->Complexity(benchmark::oN);

void LoadLongBody(benchmark::State& state) {
    String text = u"<body>" + String(static_cast<std::size_t>(state.range(0)), u'\u00e9') + u"</body>";
    for ([[maybe_unused]] auto _ : state) {
        auto document = XmlDocument::Create();
        benchmark::DoNotOptimize(document->Load(text));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(LoadLongBody)->Range(1 << 20, 1 << 24)->Complexity(benchmark::oN);

}  // namespace

}  // namespace quorix
