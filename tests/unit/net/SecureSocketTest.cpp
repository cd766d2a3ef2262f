#include <gtest/gtest.h>

#include "quorix/net/SecureChannel.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/TemporaryFolder.h"
#include "testkit/TlsPeer.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

using namespace testkit;

class SecureSocket : public ::testing::Test {
protected:
    SecureSocket() {
        environment.WhileWaiting([this] { Converse(); });
        client = SocketRecorder::Create();
        client->socket->SSLEnable(true);
        client->socket->RemoteHost(u"localhost");
        client->socket->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
    }

    void Converse() {
        if (peer == nullptr) return;
        peer->Hear(environment.Peer().TakeHeard());
        Say(peer->TakeOutput());
    }

    void Say(const std::string& bytes) {
        if (!bytes.empty()) environment.Peer().Say(bytes);
    }

    void ConnectTo(const Identity& identity) {
        peer = std::make_unique<TlsPeer>(identity);
        client->socket->Connect();
        if (environment.PeerCount() != 0) Converse();  // the client's last message of the handshake
    }

    void ConnectToGoodPeer() {
        ConnectTo(IssuedBy(authority, {}));
        environment.DoEvents();
        client->TakeLog();
    }

    // Lets both sides speak until neither has anything left to say.
    void Settle() {
        for (int round = 0; round < 8; ++round) {
            Converse();
            environment.DoEvents();
        }
    }

    DeterministicEnvironment environment;
    TemporaryFolder folder;
    Identity authority = Authority("The authority of these tests");
    std::unique_ptr<TlsPeer> peer;
    std::shared_ptr<SocketRecorder> client;
};

TEST_F(SecureSocket, ConnectsBeforeConnectReturnsAndDescribesThePeer) {
    CertificateWishes wishes;
    wishes.commonName = "Caf\xC3\xA9, chat";
    client->on["connect"] = [&] { EXPECT_EQ(client->socket->SSLTrusted(), 1); };
    ConnectTo(IssuedBy(authority, wishes));
    EXPECT_EQ(client->log, Log{"connect"});
    EXPECT_EQ(client->socket->State(), sockConnected);
    EXPECT_EQ(client->socket->SSLTrusted(), 0);
    EXPECT_EQ(BytesFromWire(client->socket->SSLCipher()), SSL_get_cipher_name(peer->Native()));
    EXPECT_EQ(client->socket->SSLSubject(), u"CN=Caf\\C3\\A9\\, chat");
    EXPECT_EQ(client->socket->SSLIssuer(), u"CN=The authority of these tests");
    EXPECT_EQ(peer->AskedName(), "localhost");
    environment.DoEvents();
    EXPECT_EQ(client->log, (Log{"connect", "sent"}));
}

TEST_F(SecureSocket, JudgesTheCertificateAndGoesOnAllTheSame) {
    struct Row {
        Identity identity;
        std::int32_t verdict;
        StringView host = u"localhost";
    };
    auto issued = [&](int from, int until, const char* names = "DNS:localhost,IP:127.0.0.1") {
        return IssuedBy(authority, {"localhost", names, from, until});
    };
    const char* elsewhere = "DNS:elsewhere.example,IP:192.0.2.1";
    std::vector<Row> rows;
    rows.push_back({issued(-1, 30), 0, u"127.0.0.1"});
    rows.push_back({issued(1, 30), 9});
    rows.push_back({issued(-1, 30, elsewhere), 62});
    rows.push_back({issued(-1, 30, elsewhere), 64, u"127.0.0.1"});
    rows.push_back({IssuedBy(Authority("Other"), {}), 20});
    for (const Row& row : rows) {
        client->socket->RemoteHost(row.host);
        ConnectTo(row.identity);
        EXPECT_EQ(client->socket->SSLTrusted(), row.verdict);
        EXPECT_EQ(client->socket->State(), sockConnected) << row.verdict;
        EXPECT_EQ(peer->AskedName(), row.host == u"localhost" ? "localhost" : "") << row.verdict;
    }
    client->socket->SSLCAFile(u"");
    ConnectTo(issued(-1, 30));
    EXPECT_EQ(client->socket->SSLTrusted(), 20);
}

TEST_F(SecureSocket, KeepsOrderHoweverTheConnectionCutsAndBlocks) {
    ConnectToGoodPeer();
    environment.LimitReads(7);
    environment.LimitWrites(11);
    std::string text;
    for (int i = 0; i < 9000; ++i) text += std::to_string(i) + ' ';
    environment.BlockWrites(true);
    client->socket->SendBytes(text);
    client->socket->SendData(u"and the end");
    SSL_key_update(peer->Native(), SSL_KEY_UPDATE_REQUESTED);  // to be answered behind what waits
    peer->Write(text);
    Settle();
    EXPECT_EQ(peer->Text(), "");
    EXPECT_EQ(client->received, text);
    environment.BlockWrites(false);
    Settle();
    EXPECT_EQ(peer->Text(), text + "and the end");
    EXPECT_EQ(std::count(client->log.begin(), client->log.end(), "sent"), 1);
    client->socket->Disconnect();
    peer->Hear(environment.Peer().TakeHeard());
    EXPECT_TRUE(peer->HeardGoodbye() && environment.Peer().ClientClosed());
}

// Bytes decrypted already, of which the system knows nothing, are announced like others, and before the end.
TEST_F(SecureSocket, WhatTheChannelHoldsLeavesOthersTheirTurnAndArrivesWhole) {
    ConnectToGoodPeer();
    auto other = SocketRecorder::Connecting();
    environment.DoEvents();
    std::size_t readBefore = 0;
    other->on["data"] = [&] { readBefore = client->received.size(); };
    std::string text(200'000, 'x');
    peer->Write(text);
    environment.Peer(0).Say(peer->TakeOutput());
    environment.Peer(0).Close();
    environment.Peer(1).Say("me too");
    environment.DoEvents();
    EXPECT_GT(readBefore, 0U);
    EXPECT_LT(readBefore, 64001U);
    EXPECT_EQ(client->received, text);
    EXPECT_EQ(client->log.back(), "closed");
}

// Each ends the connection from outside; the text before it must arrive, and Closed once behind it.
TEST_F(SecureSocket, HoweverThePeerEndsItClosedComesOnce) {
    auto goodbye = [&] {
        peer->SayGoodbye();
        Say(peer->TakeOutput());
    };
    auto cutRecord = [&] {
        peer->Write("never complete");
        std::string record = peer->TakeOutput();
        Say(record.substr(0, record.size() / 2));
        environment.Peer().Close();
    };
    std::vector<std::function<void()>> endings = {
        [&] { environment.Peer().CloseWith(SOCKERR_Reset); },
        goodbye,
        [&] { goodbye(), environment.Peer().Close(); },
        cutRecord,
        [&] { Say("this is no record"); },
        [&] { Say(std::string("\x17\3\3\0\x10", 5) + std::string(16, 'x')); },
    };
    for (std::size_t i = 0; i < endings.size(); ++i) {
        ConnectToGoodPeer();
        peer->Write("last words");
        Say(peer->TakeOutput());
        endings[i]();
        client->socket->SendData(u"too late");  // which may be what finds the connection broken
        environment.DoEvents();
        EXPECT_EQ(client->TakeLog(), (Log{"data:last words", "closed"})) << i;
        client->socket->Disconnect();
        EXPECT_EQ(environment.OpenSockets(), 0U);
    }
}

TEST_F(SecureSocket, AHandshakeThatFailsIsAnAbortedConnection) {
    Identity nonsense = SelfSigned({});
    nonsense.key.reset(EVP_EC_gen("P-256"));  // signs with a key that is not the certificate's
    std::vector<std::function<void()>> peers = {
        [] {},                                           // silent
        [&] { environment.Advance(100), Say("\x16"); },  // one byte at a time: no byte prolongs the time-out
        [&] {
            if (client->log.empty() && !peer) peer = std::make_unique<TlsPeer>(nonsense);
            Converse();
        },
        [&] { environment.Peer().Close(); },
        [&] { Say("<stream:error>this port speaks plain text</stream:error>"); },
        [&] { Say(std::string(70000, '\x16')); },
        [&] { Say(std::string("\x15\3\3\0\2\2\x28", 7)); },      // a fatal alert
        [&] { Say(std::string("\x16\3\3\0\4\x0B\0\0\0", 9)); },  // an empty chain before any hello
    };
    for (std::size_t i = 0; i < peers.size(); ++i) {
        std::int64_t start = environment.Milliseconds();
        environment.WhileWaiting(peers[i]);
        client->socket->RemoteHost(u"localhost");
        client->socket->TimeOut(700);
        client->socket->Connect();
        environment.DoEvents();
        EXPECT_EQ(client->TakeLog(), Log{"error:10053:Software caused connection abort."}) << i;
        EXPECT_EQ(client->socket->State(), sockClosed);
        EXPECT_EQ(environment.OpenSockets(), 0U);
        EXPECT_LE(environment.Milliseconds() - start, i < 2 ? 800 : 0) << i;  // what is wrong fails at once
    }
}

TEST_F(SecureSocket, AHandlerMayDropTheLastReference) {
    client->on["connect"] = [&] { client->socket.reset(); };
    std::weak_ptr<cSocketSSL> socket = client->socket;
    ConnectTo(IssuedBy(authority, {}));
    EXPECT_TRUE(socket.expired());
    EXPECT_EQ(environment.OpenSockets(), 0U);
}

}  // namespace
}  // namespace quorix::testing_net
