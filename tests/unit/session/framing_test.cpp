#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

TEST_F(SessionTest, TakesTheHeadersOwnIdAndDropsWhatFollowsIt) {
    const std::pair<const char*, StringView> cases[] = {
        {"<?xml version='1.0'?><stream:stream from='s' id='abc'><message><body>lost</body></message>",
         u"abc"},
        {"<stream:stream from='s'><stream:features id='other'/>", u""}};
    for (const auto& [header, id] : cases) {
        session->Connect();
        env.DoEvents();
        EXPECT_EQ(Raised(header), Lines{});
        EXPECT_EQ(session->SessionID(), id);
    }
}

// What arrives in these pieces is reported in these stanzas.
struct Framing {
    const char* name;
    Lines chunks;
    Lines stanzas;
};

TEST_F(SessionTest, CutsTheStreamIntoStanzas) {
    const Framing framings[] = {
        {"as received", {"<a  b='1'></a>"}, {"<a  b='1'></a>"}},
        {"split anywhere",
         {"<a b='>", "'", "><!-", "- > --", "><b/", "></a", ">"},
         {"<a b='>'><!-- > --><b/></a>"}},
        {"two in one chunk are serialized", {"<a  b='1'></a> \n <b/>"}, {"<a b=\"1\"/>", "<b/>"}},
        {"one and a half wait for the other half", {"<a/><b>", "</b>"}, {"<a/>", "<b/>"}},
        {"white space is never a stanza", {" ", "\n", "<a/>"}, {"<a/>"}},
        {"white space by reference is no part of a document", {"<a  b='1'/>&#13;"}, {"<a b=\"1\"/>"}},
        {"text between stanzas is passed on", {"<a/>x &amp; y<b/>"}, {"<a/>", "x &amp; y", "<b/>"}},
        {"a lone text too", {"hello"}, {"hello"}},
        {"a reference in pieces", {"a &am", "p; b"}, {"a &amp; b"}},
        {"a declaration waits for its element",
         {"<?xml version='1.0'?>", "<a/>"},
         {"<?xml version='1.0'?><a/>"}},
        {"character data holds markup", {"<a><![CDATA[</a>]]", "></a>"}, {"<a><![CDATA[</a>]]></a>"}},
        {"undeclared prefixes",
         {"<stream:features><x/></stream:features>"},
         {"<stream:features><x/></stream:features>"}},
        {"the closing tag blocks what follows", {"</stream:stream>", "<a/>"}, {}},
        {"mismatched tags block what follows", {"<a></b>", "<c/>"}, {}},
        {"a document type blocks what follows", {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", "<c/>"}, {}},
        {"an unknown entity blocks what follows", {"<a>&bomb;</a>", "<c/>"}, {}},
        {"a NUL blocks what follows", {std::string("<a>\0</a>", 8), "<c/>"}, {}}};
    for (const Framing& framing : framings) {
        LogIn();
        for (const std::string& chunk : framing.chunks) Say(chunk);
        EXPECT_EQ(events->incoming, framing.stanzas) << framing.name;
    }
}

TEST_F(LoggedIn, ReadsTheSameFromSingleBytes) {
    env.LimitReads(1);
    EXPECT_EQ(Raised("<message from='a@s'><body>grüß dich</body></message>"), Lines{"OnMessage grüß dich"});
}

TEST_F(LoggedIn, SurvivesANestingBombAndACutSequence) {
    std::string bomb;
    for (int i = 0; i < 200000; ++i) bomb += "<a>";
    for (int i = 0; i < 200000; ++i) bomb += "</a>";
    Say(bomb);
    EXPECT_EQ(events->incoming, Lines{bomb});
    EXPECT_EQ(events->lines, Lines{});
    std::string names = "<message from='a@s'><\xC3\xA9 \xD7='1'/><body>x</body>";
    for (int i = 0; i < 2000; ++i) names += "<n a" + std::to_string(i) + "=''/>";
    EXPECT_EQ(Raised(names + "</message>"), Lines{"OnMessage x"});
    Say("<message from='a@s'><body>cut \xE4\xB8</body></message>");
    EXPECT_EQ(events->lines, Lines{"OnMessage cut \xC3\xA4\xC2\xB8"});
}

TEST_F(LoggedIn, TakesAnAttributeOfTwelveMegabytes) {
    Say("<a b='" + std::string(12 << 20, 'x') + "'/>");
    ASSERT_EQ(events->incoming.size(), 1U);
    EXPECT_GT(events->incoming[0].size(), 12U << 20U);
}

TEST_F(LoggedIn, EndsWithAStreamErrorWithoutAWord) {
    testkit::ScriptedPeer& peer = env.Peer();
    Say("<stream:error>gone</stream:error>");
    EXPECT_EQ(events->lines, (Lines{"OnError s 0 INVALID XML STREAM", "OnDisConnected"}));
    EXPECT_EQ(events->incoming, Lines(2, "<stream:error>gone</stream:error>"));
    EXPECT_EQ(events->nodes.at(0)->xml(),
              u"<QuorixServer type=\"error\"><error code=\"0\">INVALID XML STREAM</error></QuorixServer>");
    EXPECT_EQ(peer.Heard(), "");
    EXPECT_TRUE(peer.ClientClosed());
}

TEST_F(LoggedIn, ReportsAStreamErrorOnceWhenTheClosingTagStandsBehindIt) {
    Say("<stream:error>gone</stream:error></stream:stream>");
    EXPECT_EQ(events->incoming.size(), 1U);
    EXPECT_EQ(events->Count("OnDisConnected"), 1U);
}

TEST_F(LoggedIn, GivesEachStanzaANodeThatMayBeKept) {
    Say("<iq id='1'/><iq id='2'/>");
    Say("<iq id='3'/>");
    ASSERT_EQ(events->nodes.size(), 3U);
    EXPECT_EQ(events->nodes[0]->GetAttrib(u"id"), u"1");
    EXPECT_EQ(events->nodes[1]->GetAttrib(u"id"), u"2");
}

}  // namespace
}  // namespace quorix
