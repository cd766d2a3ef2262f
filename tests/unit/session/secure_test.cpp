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

    testkit::TlsPeer peer{testkit::SelfSigned({})};
};

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
    peer.Write("<stream:stream id='s1'>");
    Converse();
    env.DoEvents();
    Converse();
    EXPECT_EQ(peer.Text().find("password"), std::string::npos);
    EXPECT_EQ(env.OpenSockets(), 0U);
}

}  // namespace
}  // namespace quorix
