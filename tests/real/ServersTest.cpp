#include "tests/real/Servers.h"

#include <gmock/gmock.h>

#include <regex>

#include "quorix/auth/SHAHash.h"
#include "quorix/base/WireText.h"
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
        std::smatch found;
        if (std::regex_search(header, found, std::regex(R"( id=["']([^"']+)["'])"))) id_ = found[1];
    }

    // The answer, up to the first '>' behind `mark`.
    std::string Ask(const std::string& type, const std::string& query, const std::string& mark) {
        connection_.Send("<iq type='" + type + "' id='ask' to='localhost'>" + query + "</iq>");
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
};

TEST_P(Servers, RegisterLogInAndServeTheRoster) {
    PlainSession session(Server().Port());
    EXPECT_THAT(session.Register("mary"), HasSubstr("result"));
    EXPECT_THAT(session.LoginFields("mary"), HasSubstr(HasDigest() ? "<digest" : "<password"));
    EXPECT_THAT(session.Login("mary", HasDigest()), HasSubstr("result"));
    EXPECT_THAT(session.Roster(), HasSubstr("result"));
}

TEST_P(Servers, KeepPortAndAccountsWhenKilled) {
    const int port = Server().Port();
    ASSERT_THAT(PlainSession(port).Register("paul"), HasSubstr("result"));
    Server().Kill();
    EXPECT_FALSE(Accepts(port));
    Server().Start();
    EXPECT_EQ(Server().Port(), port);
    EXPECT_THAT(PlainSession(port).Login("paul", false), HasSubstr("result"));
}

QUORIX_ON_EVERY_SERVER(Servers);

}  // namespace
}  // namespace quorix::real
