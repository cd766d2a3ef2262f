#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

TEST_F(SessionTest, TakesTheStreamIdAndDropsWhatFollowsTheHeader) {
    session->Connect();
    env.DoEvents();
    Say("<?xml version='1.0'?><stream:stream from='s' id='abc'><message><body>lost</body></message>");
    EXPECT_EQ(session->SessionID(), u"abc");
    Say("<iq/>");
    EXPECT_EQ(events->incoming.size(), 2U);
    EXPECT_EQ(events->Count("OnMessage"), 0U);
}

TEST_F(SessionTest, TakesNoIdButTheHeadersOwn) {
    session->Connect();
    env.DoEvents();
    Say("<stream:stream from='s'><stream:features id='other'/>");
    EXPECT_EQ(session->SessionID(), u"");
}

// What arrives in these pieces is reported in these stanzas.
struct Framing {
    const char* name;
    Lines chunks;
    Lines stanzas;
};

void PrintTo(const Framing& framing, std::ostream* out) { *out << framing.name; }

class FramingTest : public SessionTest, public ::testing::WithParamInterface<Framing> {};

TEST_P(FramingTest, CutsTheStream) {
    LogIn();
    for (const std::string& chunk : GetParam().chunks) Say(chunk);
    EXPECT_EQ(events->incoming, GetParam().stanzas);
}

INSTANTIATE_TEST_SUITE_P(
    Chunks, FramingTest,
    ::testing::Values(
        Framing{"as received", {"<a  b='1'></a>"}, {"<a  b='1'></a>"}},
        Framing{"split anywhere",
                {"<a b='>", "'", "><!-", "- > --", "><b/", "></a", ">"},
                {"<a b='>'><!-- > --><b/></a>"}},
        Framing{"two in one chunk are serialized", {"<a  b='1'></a> \n <b/>"}, {"<a b=\"1\"/>", "<b/>"}},
        Framing{"one and a half wait for the other half", {"<a/><b>", "</b>"}, {"<a/>", "<b/>"}},
        Framing{"white space is never a stanza", {" ", "\n", "<a/>"}, {"<a/>"}},
        Framing{"text between stanzas is passed on", {"<a/>x &amp; y<b/>"}, {"<a/>", "x &amp; y", "<b/>"}},
        Framing{"a lone text too", {"hello"}, {"hello"}},
        Framing{"a reference in pieces", {"a &am", "p; b"}, {"a &amp; b"}},
        Framing{"a declaration waits for its element",
                {"<?xml version='1.0'?>", "<a/>"},
                {"<?xml version='1.0'?><a/>"}},
        Framing{"character data holds markup", {"<a><![CDATA[</a>]]", "></a>"}, {"<a><![CDATA[</a>]]></a>"}},
        Framing{"undeclared prefixes",
                {"<stream:features><x/></stream:features>"},
                {"<stream:features><x/></stream:features>"}},
        Framing{"the closing tag blocks what follows", {"</stream:stream>", "<a/>"}, {}},
        Framing{"mismatched tags block what follows", {"<a></b>", "<c/>"}, {}},
        Framing{
            "a document type blocks what follows", {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", "<c/>"}, {}},
        Framing{"an unknown entity blocks what follows", {"<a>&bomb;</a>", "<c/>"}, {}},
        Framing{"a NUL blocks what follows", {std::string("<a>\0</a>", 8), "<c/>"}, {}}));

TEST_F(SessionTest, ReadsTheSameFromSingleBytes) {
    LogIn();
    env.LimitReads(1);
    Say("<message from='a@s'><body>gr\xC3\xBC\xC3\x9F dich</body></message>");
    EXPECT_EQ(events->Count("OnMessage"), 1U);
    EXPECT_EQ(events->lines.at(0), "OnMessage gr\xFC\xDF dich");
}

TEST_F(SessionTest, SurvivesANestingBombAndACutSequence) {
    LogIn();
    std::string bomb;
    for (int i = 0; i < 200000; ++i) bomb += "<a>";
    for (int i = 0; i < 200000; ++i) bomb += "</a>";
    Say(bomb);
    EXPECT_TRUE(events->incoming.empty());
    session->Connect();
    LogIn();
    Say("<message from='a@s'><body>cut \xE4\xB8</body></message>");
    EXPECT_EQ(events->lines, Lines{"OnMessage cut \xE4\xB8"});
}

TEST_F(SessionTest, TakesAnAttributeOfTwelveMegabytes) {
    LogIn();
    Say("<a b='" + std::string(12 << 20, 'x') + "'/>");
    ASSERT_EQ(events->incoming.size(), 1U);
    EXPECT_GT(events->incoming[0].size(), 12U << 20U);
}

TEST_F(SessionTest, EndsWithAStreamErrorWithoutAWord) {
    LogIn();
    testkit::ScriptedPeer& peer = env.Peer();
    Say("<stream:error>gone</stream:error>");
    EXPECT_EQ(events->lines, (Lines{"OnError s 0 INVALID XML STREAM", "OnDisConnected"}));
    EXPECT_EQ(events->incoming, Lines(2, "<stream:error>gone</stream:error>"));
    EXPECT_EQ(events->nodes.at(0)->xml(),
              u"<QuorixServer type=\"error\"><error code=\"0\">INVALID XML STREAM</error></QuorixServer>");
    EXPECT_EQ(peer.Heard(), "");
    EXPECT_TRUE(peer.ClientClosed());
}

TEST_F(SessionTest, ReportsAStreamErrorOnceWhenTheClosingTagStandsBehindIt) {
    LogIn();
    Say("<stream:error>gone</stream:error></stream:stream>");
    EXPECT_EQ(events->incoming.size(), 1U);
    EXPECT_EQ(events->Count("OnDisConnected"), 1U);
}

TEST_F(SessionTest, GivesEachStanzaANodeThatMayBeKept) {
    LogIn();
    Say("<iq id='1'/><iq id='2'/>");
    Say("<iq id='3'/>");
    ASSERT_EQ(events->nodes.size(), 3U);
    EXPECT_EQ(events->nodes[0]->GetAttrib(u"id"), u"1");
    EXPECT_EQ(events->nodes[1]->GetAttrib(u"id"), u"2");
}

}  // namespace
}  // namespace quorix
