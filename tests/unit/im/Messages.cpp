#include "quorix/im/Messages.h"

#include <gtest/gtest.h>

#include "tests/unit/ErrorOf.h"
#include "tests/unit/im/FakeSession.h"

namespace quorix::test {
namespace {

const std::string kFrom = R"(from="Me@example.org/Home")";

class MessageTest : public ::testing::Test {
protected:
    std::shared_ptr<FakeSession> session = FakeSession::Make();

    std::shared_ptr<cMessage> New(StringView body = {}) {
        return CreateMessage(session, u"to@b", MSG_Chat, body, u"");
    }
    cMessage Read(StringView content) {
        return {session, Node(Concat({u"<message>", content, u"</message>"}))};
    }
    // What `message` holds between its own tags.
    static std::string Content(const cMessage& message) {
        std::string xml = Show(message.xml());
        std::size_t begin = xml.find('>') + 1;
        return begin == xml.size() ? "" : xml.substr(begin, xml.rfind('<') - begin);
    }
};

TEST_F(MessageTest, ANewMessageIsASkeletonThatItsPropertiesFill) {
    EXPECT_EQ(Show(cMessage::Create(session)->xml()), R"(<message id="KV_1" type="" to="" )" + kFrom + "/>");
    EXPECT_EQ(Show(CreateMessage(session, u"a@b/c", MSG_Normal, u"", u"")->xml()),
              R"(<message id="KV_2" type="normal" to="a@b/c" )" + kFrom + "/>");
    EXPECT_EQ(
        Show(CreateMessage(session, u"a", MSG_UnKnown, u"b", u"s")->xml()),
        R"(<message id="KV_3" type="" to="a" )" + kFrom + "><body>b</body><subject>s</subject></message>");
    session->resource = u"Tom's <desk>";
    EXPECT_EQ(cMessage::Create(session)->FromJid(), u"me@example.org/Tom's <desk>");
    session->resource = u"caf\u00e9";
    EXPECT_EQ(cMessage::Create(session)->FromJid(), u"me@example.org/caf\u00c3\u00a9") << "as at the login";
}

TEST_F(MessageTest, TypesAreReadAndWrittenByName) {
    const std::pair<StringView, eMsgType> cases[] = {
        {u"normal", MSG_Normal},       {u"", MSG_Normal},
        {u"chat", MSG_Chat},           {u"headline", MSG_Headline},
        {u"groupchat", MSG_GroupChat}, {u"error", MSG_UnKnown},
        {u"Chat", MSG_UnKnown}};
    for (const auto& [name, type] : cases) {
        cMessage message(session, Node(Concat({u"<message type='", name, u"'/>"})));
        EXPECT_EQ(message.MSG_Type(), type) << Show(name);
    }
    EXPECT_EQ(Read(u"").MSG_Type(), MSG_Normal);

    auto message = New();
    for (eMsgType type : {MSG_Normal, MSG_Headline, MSG_GroupChat, MSG_Chat}) {
        message->MSG_Type(type);
        EXPECT_EQ(message->MSG_Type(), type);
    }
    message->MSG_Type(MSG_UnKnown);
    message->MSG_Type(static_cast<eMsgType>(-1));
    EXPECT_EQ(message->MSG_Type(), MSG_Chat);
}

TEST_F(MessageTest, TheSenderReadsWithALowerCaseAddressAndAlwaysASlash) {
    const std::pair<StringView, StringView> cases[] = {
        {u"ANN@B.ORG", u"ann@b.org/"}, {u"Ann@b/Home/X", u"ann@b/Home/X"}, {u"/", u"/"}, {u"", u"/"}};
    for (const auto& [from, read] : cases) {
        auto message = New();
        message->FromJid(from);
        EXPECT_EQ(message->FromJid(), read);
    }
    EXPECT_EQ(Read(u"<x from='deeper@b'/>").FromJid(), u"/");
}

TEST_F(MessageTest, TextGoesOutEncodedAndReadsBackAsItWas) {
    auto message = New(u"a<b&\u00e9");
    EXPECT_EQ(Content(*message), "<body>a&lt;b&amp;\xC3\x83\xC2\xA9</body>");
    EXPECT_EQ(message->Body(), u"a<b&\u00e9");
    message->Body(u"");
    message->Subject(u"\u20ac");
    message->Subject(u"s");
    message->Body(u"\u8bf4<");
    EXPECT_EQ(Content(*message), "<body>\xE8\xAF\xB4&lt;</body><subject>s</subject>")
        << "from U+8000 on nothing is encoded";
    message->Thread(u"\u00e9");
    message->Thread(u"2");
    EXPECT_EQ(message->Thread(), u"\u00e9");
    EXPECT_NE(Content(*message).find("<thread>\xC3\xA9</thread><thread>2</thread>"), std::string::npos);
}

TEST_F(MessageTest, BodyAndSubjectAreTheMessagesOwn) {
    auto message = New();
    message->XHTML(u"<b>x</b>");
    EXPECT_EQ(message->Body(), u"");
    message->Body(u"plain");
    EXPECT_EQ(Content(*message),
              R"(<html xmlns="http://www.w3.org/1999/xhtml"><body><b>x</b></body></html><body>plain</body>)");
    EXPECT_EQ(Read(u"<body>1<b>2</b></body><body>3</body>").Body(), u"12");
}

TEST_F(MessageTest, AMessageIsSentAsItStands) {
    auto message = New(u"hi");
    message->AddBCC(u"secret@z");  // without an open copy there is no blind one
    message->SendMessage();
    EXPECT_EQ(session->TakeSent(), Lines{Show(message->xml())});
    session.reset();
    EXPECT_EQ(ErrorOf([&] { message->SendMessage(); }), ERR_ObjectNotSet);
}

TEST_F(MessageTest, EventsAreAskedForInOneElement) {
    auto message = New();
    for (std::int32_t event : {KV_Cancelled, KV_Offline, KV_Composing, KV_Displayed, KV_Delivered}) {
        EXPECT_FALSE(message->getEvent(static_cast<eEvent>(event)));
        message->AddEvent(static_cast<eEvent>(event));
    }
    message->AddEvent(static_cast<eEvent>(-1));
    EXPECT_EQ(Content(*message),
              R"(<x xmlns="jabber:x:event"><offline/><composing/><displayed/><delivered/></x>)");
    for (eEvent event : {KV_Offline, KV_Composing, KV_Displayed, KV_Delivered})
        EXPECT_TRUE(message->getEvent(event));
    EXPECT_FALSE(message->getEvent(KV_Cancelled));
    EXPECT_FALSE(message->getEvent(static_cast<eEvent>(-1)));
    EXPECT_FALSE(Read(u"<x xmlns='jabber:x:oob'><composing/></x><composing/>").getEvent(KV_Composing));
    EXPECT_TRUE(Read(u"<x/><x xmlns='jabber:x:event'><composing/></x>").getEvent(KV_Composing));
}

TEST_F(MessageTest, EventReportsNameTheEventUnlessCancelled) {
    auto report = [](const std::string& content) {
        return "<message to='a@b/c'><x xmlns='jabber:x:event'>" + content + "</x></message>";
    };
    for (std::int32_t event = -1; event <= 4; ++event) {
        SendEvent(*session, u"a@b/c", static_cast<eEvent>(event), u"7", false);
    }
    SendEvent(*session, u"a@b/c", KV_Composing, u"7", true);
    SendEvent(*session, u"a@b/c", KV_Composing, u"", false);
    EXPECT_EQ(session->TakeSent(),
              (Lines{report("<id>7</id>"), report("<id>7</id>"), report("<composing/><id>7</id>"),
                     report("<displayed/><id>7</id>"), report("<delivered/><id>7</id>"), report("<id>7</id>"),
                     report("<id>7</id>"), report("<composing/>")}));
    session->connected = false;
    SendEvent(*session, u"a@b/c", KV_Composing, u"7", false);
    EXPECT_EQ(session->TakeSent(), Lines{});
}

TEST_F(MessageTest, MarkupIsWrittenWhenWellFormedAndReadsBack) {
    auto message = New();
    for (StringView broken : {u"<b>", u"a & b", u"</body><body>", u"</body></x>"}) message->XHTML(broken);
    EXPECT_EQ(Content(*message), "");
    message->XHTML(u"<em>\u00e9</em> &lt; <br/>");
    message->XHTML(u"second");
    EXPECT_EQ(message->XHTML(), u"<em>\u00e9</em> < <br/>");
}

TEST_F(MessageTest, MarkupIsFoundByItsNamespaceBetweenTheTagsOfItsBody) {
    const std::pair<StringView, StringView> cases[] = {
        {u"<html xmlns='x'><body>no</body></html>"
         u"<d><html xmlns='http://www.w3.org/1999/xhtml'><BODY class='c'>yes</BODY></html></d>",
         u"yes"},
        {u"<html xmlns='http://www.w3.org/1999/xhtml'><body>1<body>2</body>3</body></html>", u"1<body>2"},
        {u"<html xmlns='http://www.w3.org/1999/xhtml'><body/></html>", u""},
        {u"<html xmlns='http://www.w3.org/1999/xhtml'/>", u""},
        {u"<html><body>no</body></html>", u""},
        {u"", u""}};
    for (const auto& [content, markup] : cases) EXPECT_EQ(Read(content).XHTML(), markup) << Show(content);
}

TEST_F(MessageTest, CriticalMarkupIsHiddenWhileTheFilterIsOn) {
    for (StringView critical :
         {u"<ScRiPt>x</ScRiPt>", u"a<object/>", u"<form/>", u"<php/>", u"<img src='x'/>", u"<iframe/>",
          u"<applet/>", u"<scripted/>", u"&lt;script&gt;", u"&amp;lt;img", u"<b title='&lt;SCRIPT'/>"}) {
        cMessage message =
            Read(Concat({u"<html xmlns='http://www.w3.org/1999/xhtml'><body>", critical, u"</body></html>"}));
        EXPECT_EQ(message.XHTML(), u"") << Show(critical);
        message.FilterCriticalXHTML(false);
        EXPECT_NE(message.XHTML(), u"") << Show(critical);
    }
    // What the list does not name passes.
    for (StringView passing : {u"<h:script>x</h:script>", u"<a onclick=\"x\">y</a>", u"<embed/>"}) {
        EXPECT_EQ(
            Read(Concat({u"<html xmlns='http://www.w3.org/1999/xhtml'><body>", passing, u"</body></html>"}))
                .XHTML(),
            passing);
    }
}

TEST_F(MessageTest, ExtensionsReadFromTheirOwnNamespace) {
    cMessage message = Read(
        u"<x xmlns='other' stamp='no'><url>no</url></x><x xmlns='jabber:x:delay' stamp='20020910T23:08:25'/>"
        u"<x xmlns='jabber:x:oob'><url>http://a/?b&amp;c</url><desc>\u00c3\u00a9</desc></x>"
        u"<x xmlns='jabber:x:rtf'><richtext>{\\rtf1}</richtext></x>");
    EXPECT_EQ(message.Stamp(), u"20020910T23:08:25");
    EXPECT_EQ(message.URL(), u"http://a/?b&c");
    EXPECT_EQ(message.desc(), u"\u00c3\u00a9");
    EXPECT_EQ(message.TextRtf(), u"{\\rtf1}");
    cMessage empty = Read(u"<url>no</url><richtext>no</richtext>");
    EXPECT_EQ(empty.Stamp() + empty.URL() + empty.desc() + empty.TextRtf(), u"");

    auto written = New();
    written->TextRtf(u"{<\u00e9}");
    EXPECT_EQ(Content(*written), R"(<x xmlns="jabber:x:rtf"><richtext>{&lt;)"
                                 "\xC3\x83\xC2\xA9}</richtext></x>");
}

TEST_F(MessageTest, ContactsAreEnclosedOnce) {
    auto item = std::make_shared<cRosterItem>();
    item->JID(u"a@b");
    item->NickName(u"\u00e9 <3");
    auto message = New();
    message->AddRoster(item);
    item->JID(u"A@B");
    message->AddRoster(item);
    item->JID(u"c@d");
    item->NickName(u"");
    message->AddRoster(item);
    EXPECT_EQ(Content(*message),
              "<x xmlns=\"jabber:x:roster\"><item jid=\"a@b\" name=\"\xC3\x83\xC2\xA9 &lt;3\"/>"
              "<item jid=\"c@d\" name=\"\"/></x>");
    EXPECT_THROW(message->AddRoster(nullptr), AutomationError);
}

TEST_F(MessageTest, CopiesGoToEachListedRecipientAndNameTheVisibleOnes) {
    auto message = CreateMessage(session, u"to@b", MSG_Headline, u"\u00e9", u"s");
    EXPECT_FALSE(message->HasCC());
    for (StringView jid : {u"x@y", u"X@Y", u"to@b"}) message->AddCC(jid);
    message->AddBCC(u"secret@z");
    message->AddBCC(u"x@Y");
    EXPECT_TRUE(message->HasCC());
    const std::string text = "<body>\xC3\x83\xC2\xA9</body><subject>s</subject>";
    const std::string head = R"(<message id="KV_)";
    EXPECT_EQ(Show(message->xml()), head + R"(1" type="headline" to="to@b" )" + kFrom + ">" + text +
                                        R"(<x xmlns="jabber:x:envelope"><cc jid="x@y"/><cc jid="to@b"/>)"
                                        R"(<bcc jid="secret@z"/></x></message>)");
    message->SendMessage();
    auto copy = [&](const std::string& id, const std::string& to) {
        return head + id + R"(" type="headline" to=")" + to + "\" " + kFrom + ">" + text +
               R"(<x xmlns="jabber:x:envelope"><cc jid="x@y"/><cc jid="to@b">Original Recipient</cc></x></message>)";
    };
    EXPECT_EQ(session->TakeSent(),
              (Lines{Show(message->xml()), copy("2", "x@y"), copy("3", "to@b"), copy("4", "secret@z")}));
}

TEST_F(MessageTest, AMessageRaisesItselfThenItsEventsInTheirFixedOrder) {
    session->Arrive(
        u"<message from='A@b/C'><body>x</body><x xmlns='jabber:x:event'>"
        u"<offline/><displayed/><delivered/><composing/><id>1</id></x></message>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnMessage x", "OnMessageEvent 0 1 a@b/C", "OnMessageEvent 0 3 a@b/C",
                     "OnMessageEvent 0 2 a@b/C", "OnMessageEvent 0 0 a@b/C"}));
    session->Arrive(u"<message from='a@b/c'><x xmlns='jabber:x:event'><composing/></x></message>");
    session->Arrive(u"<message/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnMessage ", "OnMessageEvent 1 1 a@b/c", "OnMessage "}));
}

TEST_F(MessageTest, AnErrorIsReportedAndNothingElse) {
    session->Arrive(
        u"<message type='error' from='A@b'><body>x</body><error code='404'>Not &lt;found</error>"
        u"<x xmlns='jabber:x:roster'><item jid='a'/></x></message>");
    session->Arrive(u"<message type='error'><error code='99999'/></message>");
    session->Arrive(u"<message type='error'><x><error code='1'>no</error></x></message>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnError A@b 404 Not <found", "OnError  0 ", "OnError  0 "}));
}

TEST_F(MessageTest, AnInvitationPassesItsTextsAsTheyAre) {
    session->Arrive(
        u"<message from='A@b/c'><body>\u00c3\u00a9 &amp;lt;</body><subject>s</subject>"
        u"<wrap><x xmlns='jabber:x:conference' jid='room@b'/></wrap></message>");
    EXPECT_EQ(session->TakeEvents(), Lines{"OnGCInvite10 room@b A@b/c \xC3\x83\xC2\xA9 &lt; s"});
    session->Arrive(u"<message><x xmlns='jabber:x:conference'/><x xmlns='jabber:x:roster'/></message>");
    EXPECT_EQ(session->TakeEvents(), Lines{}) << "a roster exchange comes first, here an empty one";
}

}  // namespace
}  // namespace quorix::test
