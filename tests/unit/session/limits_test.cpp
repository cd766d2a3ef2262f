// What is large, deep or cut where nobody would cut it.
#include <algorithm>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

TEST_F(LoggedIn, SurvivesANestingBombAndNamesThatAreNone) {
    std::string bomb;
    for (int i = 0; i < 200000; ++i) bomb += "<a>";
    for (int i = 0; i < 200000; ++i) bomb += "</a>";
    Say(bomb);
    EXPECT_EQ(events->incoming, Lines{bomb});
    EXPECT_EQ(events->lines, Lines{});
    std::string names = "<message from='a@s'><\xC3\xA9 \xD7='1'/><body>x</body>";
    for (int i = 0; i < 2000; ++i) names += "<n a" + std::to_string(i) + "=''/>";
    EXPECT_EQ(Raised(names + "</message>"), Lines{"OnMessage x"});
}

TEST_F(SessionTest, EndsWhereNestingOnlyCostsMemoryInTheModernMode) {
    session->Mode(KV_Modern);
    session->Reconnect(false);
    LogIn();
    const Lines tooDeep{"OnError s 0 A stanza is nested too deeply", "OnDisConnected"};
    std::string bomb;
    for (int i = 0; i < 110000; ++i) bomb += "<a>";
    EXPECT_EQ(Raised(bomb), tooDeep);
}

TEST_F(LoggedIn, KeepsHundredsThatWaitAsTheyCame) {
    Lines stanzas;
    for (int i = 0; i < 100; ++i) {
        const int count = i % 30 == 0 ? 300 : i % 5;
        std::string many = "<m";
        for (int k = 0; k < count; ++k) many += " a" + std::to_string(k) + "=\"" + std::string(i, 'v') + "\"";
        many += "/>";
        for (int k = 0; k < count; ++k) many += "<n/>";
        stanzas.push_back("<s i=\"" + std::to_string(i) + "\">t<b><c/></b><!--k-->" + many + "<![CDATA[d]]>" +
                          std::string(i % 40 == 0 ? 70000 : i, 'x') + "</s>");
    }
    std::string stream;
    for (const std::string& stanza : stanzas) stream += stanza + "\n";
    Say(stream + "<end>");
    EXPECT_EQ(events->incoming, Lines{});
    Say("</end>");
    stanzas.push_back("<end/>");
    EXPECT_EQ(events->incoming, stanzas);
}

TEST_F(LoggedIn, TakesAnAttributeOfTwelveMegabytes) {
    Say("<a b='" + std::string(12 << 20, 'x') + "'/>");
    ASSERT_EQ(events->incoming.size(), 1U);
    EXPECT_GT(events->incoming[0].size(), 12U << 20U);
}

TEST_F(SessionTest, ReadsTextOfAnyLengthInTheModernMode) {
    session->Mode(KV_Modern);
    LogIn();
    const std::string text = Utf8FromText(String(40000, u'\u9df9'));
    EXPECT_EQ(Raised("<message><body>" + text + "</body></message>"), Lines{"OnMessage " + text});
}

// A thousand stanzas in the pieces of a network: none waits for what follows it.
TEST_F(SessionTest, RaisesEachStanzaWithThePieceThatBringsItsEndInTheModernMode) {
    constexpr std::size_t kPiece = 1448;
    session->Mode(KV_Modern);
    LogIn();
    std::string stream;
    std::vector<std::size_t> ends;
    for (std::size_t length = 0; length < 1000; ++length) {
        stream += "<message from='a@s'><body>" + std::string(length, 'x') + "</body></message>";
        ends.push_back(stream.size());
    }
    for (std::size_t at = 0; at < stream.size(); at += kPiece) {
        Say(stream.substr(at, kPiece));
        const auto complete = std::upper_bound(ends.begin(), ends.end(), at + kPiece) - ends.begin();
        ASSERT_EQ(events->lines.size(), static_cast<std::size_t>(complete)) << at;
    }
}

TEST_F(SessionTest, BoundsTheSizeOfAStanzaWhateverThePiecesInTheModernMode) {
    session->Mode(KV_Modern);
    session->Reconnect(false);
    constexpr std::size_t kMost = 1000;
    const std::string around = "<message from='a@s'><body></body></message>";
    auto stanza = [&](std::size_t size) {
        return "<message from='a@s'><body>" + std::string(size - around.size(), 'x') + "</body></message>";
    };
    const Lines tooBig{"OnError s 0 A stanza is longer than MaxStanzaSize", "OnDisConnected"};
    for (std::size_t piece : {kMost * 2, std::size_t{1}}) {
        env.LimitReads(piece);
        for (std::size_t size : {kMost - 1, kMost}) {
            session->MaxStanzaSize(kMost);
            LogIn();
            Say(std::string(kMost * 3, ' ') + stanza(size) + "  ");
            EXPECT_EQ(events->lines.size(), 1U) << size << " in pieces of " << piece;
            session->Disconnect();
        }
        LogIn();
        EXPECT_EQ(Raised(stanza(kMost + 1)), tooBig);
        LogIn();
        EXPECT_EQ(Raised("<" + std::string(kMost, 'n')), tooBig) << "in the middle of a name";
        session->Connect();
        env.DoEvents();
        events->lines.clear();
        EXPECT_EQ(Raised("<stream:stream a='" + std::string(kMost, 'x')), tooBig)
            << "in a header without end";
    }
}

}  // namespace
}  // namespace quorix
