#include "tests/real/Servers.h"

#include <gmock/gmock.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "quorix/auth/SHAHash.h"
#include "quorix/base/WireText.h"
#include "testkit/Certificates.h"
#include "tests/real/Loopback.h"

namespace quorix::real {
namespace {

using ::testing::HasSubstr;

// A session in plain text: what every other test here relies on, shown without our own client.
class PlainSession {
public:
    explicit PlainSession(int port) : connection_(port) {
        connection_.Send(kStreamHeader);
        const std::string header = connection_.ReceiveUntil("<stream:stream");
        const auto start = header.find(" id=") + 5;
        id_ = header.substr(start, header.find(header[start - 1], start) - start);
    }

    // The answer, up to the first '>' behind `mark`.
    std::string Ask(const std::string& type, const std::string& query, const std::string& mark) {
        connection_.Send("<iq type='" + type + "' id='ask'>" + query + "</iq>");
        return connection_.ReceiveUntil(mark);
    }

    std::string Register(const std::string& user) {
        return Ask("set",
                   "<query xmlns='jabber:iq:register'><username>" + user +
                       "</username><password>secret</password></query>",
                   "<iq");
    }

    std::string LoginFields(const std::string& user) {
        return Ask("get", "<query xmlns='jabber:iq:auth'><username>" + user + "</username></query>",
                   "</query");
    }

    std::string Login(const std::string& user, bool digest) {
        return Ask("set",
                   "<query xmlns='jabber:iq:auth'><username>" + user + "</username>" +
                       (digest ? "<digest>" + Digest() + "</digest>" : "<password>secret</password>") +
                       "<resource>test</resource></query>",
                   "<iq");
    }

    std::string Roster() { return Ask("get", "<query xmlns='jabber:iq:roster'/>", "jabber:iq:roster"); }

private:
    std::string Digest() const { return BytesFromWire(SHAHash(WireFromBytes(id_ + "secret"))); }

    Connection connection_;
    std::string id_;
};

class Servers : public RealServerTest {
protected:
    // The packages' Prosody has no digest login.
    static bool HasDigest() { return GetParam() != ServerKind::prosody; }

    static std::string NewUser() {
        static int count = 0;
        return "user" + std::to_string(++count);
    }
};

TEST_P(Servers, RegisterLogInAndServeTheRoster) {
    const std::string user = NewUser();
    PlainSession session(Server().Port());
    EXPECT_THAT(session.Register(user), HasSubstr("result"));
    EXPECT_THAT(session.LoginFields(user), HasSubstr(HasDigest() ? "<digest" : "<password"));
    EXPECT_THAT(session.Login(user, HasDigest()), HasSubstr("result"));
    EXPECT_THAT(session.Roster(), HasSubstr("result"));
}

TEST_P(Servers, KeepPortAndAccountsWhenKilled) {
    const int port = Server().Port();
    const std::string user = NewUser();
    ASSERT_THAT(PlainSession(port).Register(user), HasSubstr("result"));
    Server().Kill();
    EXPECT_FALSE(Accepts(port));
    Server().Start();
    EXPECT_EQ(Server().Port(), port);
    EXPECT_THAT(PlainSession(port).Login(user, false), HasSubstr("result"));
}

QUORIX_ON_EVERY_SERVER(Servers);

// What a server says to a stream header within TLS, whatever its certificate; "" when it speaks no TLS.
std::string AnswerOverTls(int port) {
    const std::unique_ptr<SSL_CTX, testkit::Freeing<SSL_CTX_free>> context(SSL_CTX_new(TLS_client_method()));
    const std::unique_ptr<BIO, testkit::Freeing<BIO_free_all>> channel(BIO_new_ssl_connect(context.get()));
    BIO_set_conn_hostname(channel.get(), ("127.0.0.1:" + std::to_string(port)).c_str());
    BIO_write(channel.get(), kStreamHeader.data(), static_cast<int>(kStreamHeader.size()));
    std::array<char, 4096> answer{};
    const int length = BIO_read(channel.get(), answer.data(), answer.size());
    return {answer.data(), static_cast<std::size_t>(std::max(length, 0))};
}

class TlsServers : public ::testing::TestWithParam<ServerKind> {};

TEST_P(TlsServers, AnswerAStreamHeader) {
    const std::string missing = WhyMissing(GetParam());
    if (!missing.empty()) {
        SkipOrFail(missing);
        return;
    }
    const auto identity = testkit::SelfSigned({});
    const Certificate certificate{identity.SaveCertificate(::testing::TempDir()),
                                  identity.SaveKey(::testing::TempDir())};
    const auto server = MakeServer(GetParam(), &certificate);
    server->Start();
    EXPECT_THAT(AnswerOverTls(server->TlsPort()), HasSubstr("xml"));
}

INSTANTIATE_TEST_SUITE_P(Real, TlsServers, ::testing::Values(ServerKind::ejabberd, ServerKind::prosody),
                         NameOfCase);

}  // namespace
}  // namespace quorix::real
