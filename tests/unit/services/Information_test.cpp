#include <gmock/gmock.h>

#include "quorix/auth/Account.h"
#include "quorix/services/Information.h"
#include "quorix/services/OutOfBand.h"
#include "quorix/services/PrivateStorage.h"
#include "tests/unit/ErrorOf.h"
#include "tests/unit/services/FakeLink.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::tests {
namespace {

struct Sender {
    std::function<void(SessionLink&)> send;
    const char* sent;
};

TEST(Information, EachRequestAndAnswerIsWrittenExactlyAndUnderAFreshId) {
    const Sender cases[] = {

        {[](SessionLink& link) { SendVersionRequest(link, u"j"); },
         "<iq type='get' id='KV_1' to='j'><query xmlns='jabber:iq:version'></query></iq>"},
        {[](SessionLink& link) { SendTimeRequest(link, u"j"); },
         "<iq type='get' id='KV_1' to='j'><query xmlns='jabber:iq:time'></query></iq>"},
        {[](SessionLink& link) { SendLastSeenRequest(link, u"j"); },
         "<iq type='get' id='KV_1' to='j'><query xmlns='jabber:iq:last'></query></iq>"},
        {[](SessionLink& link) { SendVersionResponse(link, u"j", u"\u00e9", u"<", u"o"); },
         "<iq type='result' id='KV_1' to='j'><query xmlns='jabber:iq:version'><name>\xc3\xa9</name>"
         "<version><</version><os>o</os></query></iq>"},
        {[](SessionLink& link) { SendTimeResponse(link, u"j", u"u", u"z", u"d"); },
         "<iq type='result' id='KV_1' to='j'><query xmlns='jabber:iq:time'><utc>u</utc><tz>z</tz>"
         "<display>d</display></query></iq>"},
        {[](SessionLink& link) { SendGetLastResponse(link, u"j", u""); },
         "<iq type='result' id='KV_1' to='j'><query xmlns='jabber:iq:last' seconds=''/></iq>"},
        {[](SessionLink& link) { SendOOBRequest(link, u"j", u"\u00e9&", u"http://h/\u20ac"); },
         "<iq type='set' from='me@srv' to='j' id='KV_1'><query xmlns='jabber:iq:oob'>"
         "<desc>\xc3\x83\xc2\xa9&</desc><url>http://h/\xc3\xa2\xc2\x82\xc2\xac</url></query></iq>"},
        {[](SessionLink& link) { SendOOBComplete(link, u"j"); },
         "<iq type='result' from='me@srv' to='j' id='KV_1'><query xmlns='jabber:iq:oob'><desc/><url/>"
         "</query></iq>"},
        {[](SessionLink& link) { StorePrivateData(link, u"a:b:c", u"<d/>"); },
         "<iq type='set' id='KV_1'><query xmlns='jabber:iq:private'><a "
         "xmlns='a:b:c'><d/></a></query></iq>"}};
    for (const auto& [send, sent] : cases) {
        FakeLink link;
        send(link);
        EXPECT_EQ(link.TakeSent(), sent);
        send(link);
        EXPECT_THAT(link.TakeSent(), ::testing::HasSubstr("id='KV_2'"));
    }
}

TEST(PrivateStorage, ReadingAndANamespaceWithoutAColonTakeAnIdAndSendNothing) {
    FakeLink link;
    EXPECT_EQ(getPrivateData(link, u"a:b"), u"");
    EXPECT_EQ(ErrorOf([&] { StorePrivateData(link, u"ab", u""); }), ERR_InvalidCall);
    EXPECT_EQ(ErrorOf([&] { getPrivateData(link, u""); }), ERR_InvalidCall);
    EXPECT_EQ(link.ids, 3);
    EXPECT_TRUE(link.sent.empty());
}

struct Reply {
    void (*handle)(SessionLink&, const Stanza&);
    const char16_t* xml;
    Lines events;
};

TEST(Information, EachStanzaRaisesItsEvent) {
    const Reply cases[] = {

        {HandleVersion, u"<iq type='get' from='a' id='1'><query/></iq>", {"VersionRequest a 1"}},
        {HandleVersion,
         u"<iq type='result' from='a'><query><os>O</os><name>N</name><version>V</version></query></iq>",
         {"VersionResult a N V O"}},
        {HandleVersion, u"<iq type='error'><query/></iq>", {}},
        {HandleVersion, u"<iq type='result'/>", {"VersionResult    "}},
        {HandleTime, u"<iq type='get' from='a' id='1'><query/></iq>", {"TimeRequest a 1"}},
        {HandleTime,
         u"<iq type='result' from='a'><query><utc>U</utc><tz>Z</tz><display>D</display></query></iq>",
         {"TimeResult a U D"}},
        {HandleTime, u"<iq><query/></iq>", {}},
        {HandleLast, u"<iq type='get' from='a' id='1'><query/></iq>", {"GetLastRequest a 1"}},
        {HandleLast,
         u"<iq type='result' from='a'><query seconds='86400'/></iq>",
         {"LastSeenResult iq a 86400"}},
        {HandleLast,
         u"<iq type='result' from='a'><query seconds='99999999999'/></iq>",
         {"LastSeenResult iq a 0"}},
        {HandleLast, u"<iq type='result' from='a'><query/></iq>", {"LastSeenResult iq a 0"}},
        {HandleOob,
         u"<iq type='set' from='a'><query><desc>D</desc><url>U</url></query></iq>",
         {"OOBRequest a D U"}},
        {HandleOob, u"<iq type='result' from='a'><query/></iq>", {"OOBResult a fetched"}},
        {HandleOob, u"<iq type='error' from='a'><query/></iq>", {"OOBResult a failed"}},
        {HandleOob, u"<iq type='get' from='a'><query/></iq>", {}}};
    auto log = std::make_shared<ServiceLog>();
    FakeLink link(log);
    for (const auto& [handle, xml, events] : cases) {
        handle(link, StanzaOf(xml));
        EXPECT_EQ(log->Take(), events) << Utf8FromText(xml);
    }
}

TEST(Account, RequestsAreWrittenExactlyAndUnescaped) {
    FakeLink link;
    ChangePassword(link, u"n<w");
    EXPECT_EQ(link.TakeSent(),
              "<iq type='set' to='srv' id='kv_changepass'><query xmlns='jabber:iq:register'>"
              "<username>me</username><password>n<w</password></query></iq>");
    RemoveAccount(link);
    EXPECT_EQ(link.TakeSent(),
              "<iq type='set' to='srv' id='kv_removeaccount'><query "
              "xmlns='jabber:iq:register'><remove/></query></iq>");
    EXPECT_EQ(link.ids, 0);
    RequestRegistrationForm(link);
    EXPECT_EQ(link.TakeSent(), "<iq type='get' to='srv' id='KV_1'><query xmlns='jabber:iq:register'/></iq>");
    SendNewUser(link, StanzaOf(u"<iq><query><username/><key>k1</key><key>k2</key></query></iq>"));
    EXPECT_EQ(
        link.TakeSent(),
        "<iq type='set' to='srv' id='kv_newuser'><query xmlns='jabber:iq:register'><username>me</username>"
        "<password>pw<</password><key>k1</key></query></iq>");
    SendNewUser(link, StanzaOf(u"<iq><query/></iq>"));
    EXPECT_NE(link.TakeSent().find("<key></key></query></iq>"), std::string::npos);
}

}  // namespace
}  // namespace quorix::tests
