// How a session of the modern mode reads its stream, and how its login ends.
#include <algorithm>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class ModernStream : public SessionTest {
protected:
    ModernStream() {
        session->Mode(KV_Modern);
        session->Reconnect(false);
    }

    void Open() {
        session->Connect();
        env.DoEvents();
    }
};

TEST_F(ModernStream, TakesAStreamInAnyPieces) {
    const std::string stream =
        "<?xml version='1.0'?> <stream:stream xmlns:stream='x' id='s1'> \n"
        "<stream:features/><iq type='result' id='kv_login'/> <message "
        "from='a@s'><body>\xF0\x9F\x98\x80</body>"
        "</message> ";
    for (std::size_t size : {stream.size(), std::size_t{1}, std::size_t{7}}) {
        Open();
        for (std::size_t at = 0; at < stream.size(); at += size) Say(stream.substr(at, size));
        EXPECT_EQ(session->SessionID(), u"s1");
        EXPECT_EQ(events->Take(), (Lines{"OnAuthorized", "OnIQ", "OnMessage \xF0\x9F\x98\x80"})) << size;
        EXPECT_EQ(events->incoming.size(), 4U);
        EXPECT_EQ(events->incoming.front(), stream.substr(0, stream.find("'s1'>") + 5));
        *events = EventRecorder();
        session->Disconnect();
        events->lines.clear();
    }
}

TEST_F(ModernStream, RaisesAStanzaThatStandsBeforeTheBeginningOfAnotherOrTheClosingTag) {
    LogIn();
    EXPECT_EQ(Raised("<message from='a@s'><body>1</body></message><message><bo"), Lines{"OnMessage 1"});
    EXPECT_EQ(Raised("dy>2</body></message></stream:stream>"), (Lines{"OnMessage 2", "OnDisConnected"}));
    EXPECT_FALSE(session->IsConnected());
}

// A thousand stanzas in the pieces of a network: none waits for what follows it.
TEST_F(ModernStream, RaisesEachStanzaWithThePieceThatBringsItsEnd) {
    constexpr std::size_t kPiece = 1448;
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

TEST_F(ModernStream, TakesNothingThatStandsBehindItsEnd) {
    const std::string more = "<message from='a@s'><body>2</body></message></stream:stream>";
    OpenStream(false);
    events->lines.clear();
    EXPECT_EQ(Raised("<iq type='error' id='kv_login'><error code='401'/></iq>" + more),
              (Lines{"OnError s 401 ", "OnDisConnected"}));
    LogIn();
    events->hook = [&](const std::string& event) {
        if (event == "OnMessage") session->Disconnect();
    };
    EXPECT_EQ(Raised("<message from='a@s'><body>1</body></message>" + more),
              (Lines{"OnMessage 1", "OnDisConnected"}));
}

TEST_F(ModernStream, EndsWithTheReasonOfTheStreamError) {
    const std::string xmlns = " xmlns='urn:ietf:params:xml:ns:xmpp-streams'";
    const std::pair<std::string, std::string> cases[] = {
        {"<stream:error><system-shutdown" + xmlns + "/></stream:error>", "system-shutdown"},
        {"<stream:error><conflict" + xmlns + "/><text" + xmlns + ">Replaced</text></stream:error>",
         "conflict: Replaced"},
        {"<stream:error>gone</stream:error>", "gone"},
        {"<message></iq>", "XML not well-formed"},
        {"<message from='a@s'><body>\xFF</body></message>", "XML not well-formed"},
        {"<!DOCTYPE a>", "XML not well-formed"},
    };
    for (const auto& [said, reason] : cases) {
        LogIn();
        EXPECT_EQ(Raised(said), (Lines{"OnError s 0 " + reason, "OnDisConnected"}));
        EXPECT_FALSE(session->IsConnected());
    }
}

TEST_F(ModernStream, ComesBackAfterAStreamErrorButNotAfterAConflict) {
    session->Reconnect(true);
    for (const auto& [condition, comesBack] : {std::pair{"system-shutdown", true}, {"conflict", false}}) {
        LogIn();
        Say(std::string("<stream:error><") + condition +
            " xmlns='urn:ietf:params:xml:ns:xmpp-streams'/></stream:error>");
        const std::size_t peers = env.PeerCount();
        env.Advance(200000);
        EXPECT_EQ(env.PeerCount() > peers, comesBack) << condition;
        session->Disconnect();
    }
}

TEST_F(ModernStream, BoundsTheSizeOfAStanzaWhateverThePieces) {
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
        Open();
        events->lines.clear();
        EXPECT_EQ(Raised("<stream:stream a='" + std::string(kMost, 'x')), tooBig)
            << "in a header without end";
    }
}

TEST_F(ModernStream, TellsOfARefusalAndStaysAway) {
    session->Reconnect(true);
    const std::string condition =
        "<error type='auth'><not-authorized xmlns='urn:ietf:params:xml:ns:xmpp-stanzas'/></error>";
    const std::pair<std::string, std::string> refusals[] = {
        {"<iq type='error' id='kv_login'>" + condition + "</iq>", "401 not-authorized"},
        {"<iq type='error' id='kv_login'><error code='406'>No</error></iq>", "406 No"},
        {"<iq type='error' id='kv_login'/>", "0 "},
        {"<iq type='error' id='QUERY'><query xmlns='jabber:iq:auth'/><error code='501'/></iq>", "501 "},
    };
    for (bool newUser : {false, true}) {
        for (auto [said, reason] : refusals) {
            OpenStream(newUser);
            const String id = session->GetCurrentID();
            if (std::size_t at = said.find("QUERY"); at != std::string::npos)
                said.replace(at, 5, Utf8FromText(id));
            if (newUser && said.find("kv_login") != std::string::npos)
                said.replace(said.find("kv_login"), 8, "kv_newuser");
            events->lines.clear();
            Say(said);
            EXPECT_EQ(events->Take(), (Lines{"OnError s " + reason, "OnDisConnected"})) << said;
            const std::size_t peers = env.PeerCount();
            env.Advance(2000000);
            EXPECT_EQ(env.PeerCount(), peers) << "and does not come back";
        }
    }
}

TEST_F(ModernStream, KeepsThePasswordToItselfUnlessTheApplicationSaysSo) {
    const std::string offer = "<iq type='result'><query xmlns='jabber:iq:auth'><password/></query></iq>";
    const std::string form = "<iq type='result'><query xmlns='jabber:iq:register'><key>k</key></query></iq>";
    for (bool newUser : {false, true}) {
        OpenStream(newUser);
        testkit::ScriptedPeer& peer = env.Peer();
        peer.TakeHeard();
        events->lines.clear();
        Say(newUser ? form : offer);
        EXPECT_EQ(events->lines.front(), "OnError s 0 The password would go out in the clear");
        EXPECT_EQ(peer.Heard().find("<password>"), std::string::npos);
    }
    LogIn();
    EXPECT_EQ(ErrorOf([&] { session->ChangePassword(u"new"); }), 5);
    session->Disconnect();
    session->AuthType(KV_PlainAuth);
    session->Connect();
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    EXPECT_NE(Heard().find("<password>p</password>"), std::string::npos);
}

TEST_F(ModernStream, CompletesAnErrorByItsCondition) {
    LogIn();
    const std::string xmlns = " xmlns='urn:ietf:params:xml:ns:xmpp-stanzas'";
    EXPECT_EQ(
        Raised("<message type='error' from='a@s'><error><item-not-found" + xmlns + "/></error></message>"),
        Lines{"OnError a@s 404 item-not-found"});
    EXPECT_EQ(Raised("<message type='error' from='a@s'><error code='500'><item-not-found" + xmlns +
                     "/><text" + xmlns + ">Who?</text></error></message>"),
              Lines{"OnError a@s 500 Who?"});
}

}  // namespace
}  // namespace quorix
