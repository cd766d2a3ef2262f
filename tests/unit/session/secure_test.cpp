// The session over TLS.
#include "testkit/TlsPeer.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class SecureSession : public SessionTest {
protected:
    SecureSession() {
        session->UseSSL(true);
        session->AuthType(KV_PlainAuth);
        env.WhileWaiting([this] { Converse(); });
    }

    void Converse() {
        peer.Hear(env.Peer().TakeHeard());
        std::string answer = peer.TakeOutput();
        if (!answer.empty()) env.Peer().Say(answer);
    }

    void SayInside(std::string_view text) {
        peer.Write(text);
        Converse();
        env.DoEvents();
        Converse();
    }

    testkit::TlsPeer peer{testkit::SelfSigned({})};
};

TEST_F(SecureSession, LogsInInside) {
    session->Connect();
    Converse();
    EXPECT_EQ(peer.Text().substr(0, 24), "<stream:stream to='s' xm");
    SayInside("<stream:stream id='s1'>");
    EXPECT_NE(peer.Text().find("<password>p</password>"), std::string::npos);
    SayInside("<iq type='result' id='kv_login'/>");
    EXPECT_TRUE(session->Active());
    session->Disconnect();
    Converse();
    EXPECT_NE(peer.Text().find("</stream:stream>"), std::string::npos);
    EXPECT_TRUE(peer.HeardGoodbye());
}

TEST_F(SecureSession, AnApplicationThatDoesNotTrustThePeerLeavesBeforeThePasswordIsSent) {
    session->Connect();
    EXPECT_EQ(session->Socket()->SSLTrusted(), 18);
    EXPECT_EQ(session->Socket()->SSLSubject(), u"CN=localhost");
    session->Disconnect();
    env.DoEvents();
    Converse();
    EXPECT_EQ(peer.Text().find("password"), std::string::npos);
    EXPECT_EQ(events->Count("OnDisConnected"), 1U);
}

// A reconnection has no caller who could judge; the first text of the server is the place then.
TEST_F(SecureSession, TheServersHeaderIsEarlyEnoughToLeave) {
    events->hook = [this](const std::string& event) {
        if (event == "OnIncomingXML" && session->Socket()->SSLTrusted() != 0) session->Disconnect();
    };
    session->Connect();
    Converse();
    SayInside("<stream:stream id='s1'>");
    EXPECT_EQ(peer.Text().find("password"), std::string::npos);
    EXPECT_EQ(env.OpenSockets(), 0U);
}

}  // namespace
}  // namespace quorix
