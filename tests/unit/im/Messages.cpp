#include "quorix/im/Messages.h"

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

const std::string kFrom = R"(from="u@s/r")";

class MessageTest : public LoggedIn {
protected:
    std::shared_ptr<cMessage> New(StringView body = {}) {
        return session->CreateMessage(u"to@b", MSG_Chat, body, u"");
    }
    cMessage Read(StringView content, StringView attributes = {}) {
        auto node = std::make_shared<cXML_Node>();
        node->xml(Concat({u"<message ", attributes, u">", content, u"</message>"}));
        return {LinkOf(session), node};
    }
    // What `message` holds between its own tags.
    static std::string Content(const cMessage& message) {
        std::string xml = BytesFromWire(message.xml());
        std::size_t begin = xml.find('>') + 1;
        return begin == xml.size() ? "" : xml.substr(begin, xml.rfind('<') - begin);
    }
};

TEST_F(MessageTest, GoesOutAsItStands) {
    cMessage::Create(LinkOf(session))->SendMessage();
    EXPECT_EQ(Heard(), R"(<message id="KV_2" type="" to="" )" + kFrom + "/>");
    auto message = session->CreateMessage(u"a@b/c", MSG_Normal, u"b", u"s");
    message->AddBCC(u"secret@z");  // without an open copy there is no blind one
    message->SendMessage();
    EXPECT_EQ(Heard(), R"(<message id="KV_3" type="normal" to="a@b/c" )" + kFrom +
                           R"(><body>b</body><subject>s</subject><x xmlns="jabber:x:envelope">)"
                           R"(<bcc jid="secret@z"/></x></message>)");
    session->Resource(u"caf\u00e9 <desk>");
    EXPECT_EQ(New()->FromJid(), u"u@s/caf\u00c3\u00a9 <desk>") << "as at the login";
    message = New();
    session.reset();
    EXPECT_EQ(ErrorOf([&] { message->SendMessage(); }), ERR_ObjectNotSet);
}

TEST_F(MessageTest, ReadsItsTypeByNameAndItsSenderWithALowerCaseAddressAndAlwaysASlash) {
    const std::tuple<StringView, eMsgType, StringView> cases[] = {
        {u"", MSG_Normal, u"/"},
        {u"type='' from=''", MSG_Normal, u"/"},
        {u"type='normal' from='/'", MSG_Normal, u"/"},
        {u"type='chat' from='ANN@B.ORG'", MSG_Chat, u"ann@b.org/"},
        {u"type='headline' from='Ann@b/Home/X'", MSG_Headline, u"ann@b/Home/X"},
        {u"type='groupchat'", MSG_GroupChat, u"/"},
        {u"type='Chat'", MSG_UnKnown, u"/"}};
    for (const auto& [attributes, type, from] : cases) {
        cMessage message = Read(u"<x from='deeper@b' type='chat'/>", attributes);
        EXPECT_EQ(message.MSG_Type(), type) << Utf8FromText(attributes);
        EXPECT_EQ(message.FromJid(), from);
    }
}

TEST_F(MessageTest, EncodesItsTextsAndReadsThemBack) {
    auto message = New(u"a<b&\u00e9");
    EXPECT_EQ(message->Body(), u"a<b&\u00e9");
    message->Subject(u"\u20ac");
    EXPECT_EQ(Content(*message), "<body>a&lt;b&amp;é</body><subject>€</subject>");
    message->Body(u"\u8bf4");
    EXPECT_EQ(message->Body(), u"\u8bf4") << "from U+8000 on nothing is encoded";
}

TEST_F(MessageTest, TellsItsBodyFromThatOfItsMarkup) {
    auto message = New();
    message->XHTML(u"<b>x</b> <i>y</i> z");
    EXPECT_EQ(message->XHTML(), u"<b>x</b> <i>y</i> z");
    EXPECT_EQ(message->Body(), u"");
    message->Body(u"plain");
    EXPECT_EQ(
        Content(*message),
        R"(<html xmlns="http://www.w3.org/1999/xhtml"><body><b>x</b> <i>y</i> z</body></html><body>plain</body>)");
    EXPECT_EQ(Read(u"<body>1<b>2</b> <i>3</i></body><body>4</body>").Body(), u"12 3");
}

TEST_F(MessageTest, AsksForEventsInOneElement) {
    auto message = New();
    for (eEvent event : {KV_Cancelled, KV_Offline, KV_Composing, KV_Displayed, KV_Delivered}) {
        EXPECT_FALSE(message->getEvent(event));
        message->AddEvent(event);
        EXPECT_EQ(message->getEvent(event), event != KV_Cancelled);
    }
    EXPECT_EQ(Content(*message),
              R"(<x xmlns="jabber:x:event"><offline/><composing/><displayed/><delivered/></x>)");
    EXPECT_FALSE(Read(u"<x xmlns='jabber:x:oob'><composing/></x><composing/>").getEvent(KV_Composing));
}

TEST_F(MessageTest, ReportsAnEventUnlessItIsCancelled) {
    auto report = [&](eEvent event, StringView id, bool cancel) {
        session->SendEvent(u"a@b/c", event, id, cancel);
        return Heard();
    };
    const std::string start = "<message to='a@b/c'><x xmlns='jabber:x:event'>";
    const std::string end = "</x></message>";
    EXPECT_EQ(report(KV_Composing, u"7", false), start + "<composing/><id>7</id>" + end);
    EXPECT_EQ(report(KV_Displayed, u"7", false), start + "<displayed/><id>7</id>" + end);
    EXPECT_EQ(report(KV_Delivered, u"", false), start + "<delivered/>" + end);
    EXPECT_EQ(report(KV_Offline, u"7", false), start + "<id>7</id>" + end);
    EXPECT_EQ(report(KV_Composing, u"7", true), start + "<id>7</id>" + end);
}

TEST_F(MessageTest, FindsMarkupByItsNamespaceBetweenTheTagsOfItsBody) {
    const std::pair<StringView, StringView> cases[] = {
        {u"<html xmlns='x'><body>no</body></html>"
         u"<d><html xmlns='http://www.w3.org/1999/xhtml'><BODY class='c'>yes</BODY></html></d>",
         u"yes"},
        {u"<html xmlns='http://www.w3.org/1999/xhtml'><body>1<body>2</body>3</body></html>", u"1<body>2"},
        {u"<html xmlns='http://www.w3.org/1999/xhtml'><body/></html>", u""},
        {u"<html><body>no</body></html>", u""}};
    for (const auto& [content, markup] : cases) EXPECT_EQ(Read(content).XHTML(), markup);
}

TEST_F(MessageTest, HidesCriticalMarkupWhileTheFilterIsOn) {
    auto read = [&](StringView markup) {
        return Read(
            Concat({u"<html xmlns='http://www.w3.org/1999/xhtml'><body>", markup, u"</body></html>"}));
    };
    for (StringView critical :
         {u"<ScRiPt>x</ScRiPt>", u"a<object/>", u"<form/>", u"<php/>", u"<img src='x'/>", u"<iframe/>",
          u"<applet/>", u"<scripted/>", u"&lt;script&gt;", u"&amp;lt;img", u"<b title='&lt;SCRIPT'/>"}) {
        cMessage message = read(critical);
        EXPECT_EQ(message.XHTML(), u"") << Utf8FromText(critical);
        message.FilterCriticalXHTML(false);
        EXPECT_NE(message.XHTML(), u"") << Utf8FromText(critical);
    }
    EXPECT_EQ(read(u"<embed/>").XHTML(), u"<embed/>") << "what the list does not name passes";
}

TEST_F(MessageTest, ReadsExtensionsFromTheirOwnNamespace) {
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
}

TEST_F(MessageTest, EnclosesAContactOnce) {
    auto item = std::make_shared<cRosterItem>();
    auto message = New();
    item->NickName(u"\u00e9 <3");
    for (StringView jid : {u"a@b", u"A@B", u"c@d"}) {
        item->JID(jid);
        message->AddRoster(item);
    }
    EXPECT_EQ(
        Content(*message),
        R"(<x xmlns="jabber:x:roster"><item jid="a@b" name="é &lt;3"/><item jid="c@d" name="é &lt;3"/></x>)");
}

TEST_F(MessageTest, SendsACopyToEachListedRecipientThatNamesTheVisibleOnes) {
    auto message = session->CreateMessage(u"to@b", MSG_Headline, u"\u00e9", u"s");
    for (StringView jid : {u"x@y", u"X@Y", u"to@b"}) message->AddCC(jid);
    message->AddBCC(u"secret@z");
    message->AddBCC(u"x@Y");
    message->SendMessage();
    auto text = [&](const std::string& id, const std::string& to, const std::string& envelope) {
        return "<message id=\"KV_" + id + R"(" type="headline" to=")" + to + "\" " + kFrom +
               R"(><body>é</body><subject>s</subject><x xmlns="jabber:x:envelope"><cc jid="x@y"/>)" +
               envelope + "</x></message>";
    };
    const std::string visible = R"(<cc jid="to@b">Original Recipient</cc>)";
    EXPECT_EQ(Heard(), text("2", "to@b", R"(<cc jid="to@b"/><bcc jid="secret@z"/>)") +
                           text("3", "x@y", visible) + text("4", "to@b", visible) +
                           text("5", "secret@z", visible));
}

TEST_F(MessageTest, RaisesItselfThenItsEventsInTheirFixedOrder) {
    EXPECT_EQ(Raised("<message from='A@b/C'><body>x</body><x xmlns='jabber:x:event'>"
                     "<offline/><displayed/><delivered/><composing/><id>1</id></x></message>"),
              (Lines{"OnMessage x", "OnMessageEvent 0 1 a@b/C", "OnMessageEvent 0 3 a@b/C",
                     "OnMessageEvent 0 2 a@b/C", "OnMessageEvent 0 0 a@b/C"}));
    EXPECT_EQ(Raised("<message from='a@b/c'><x xmlns='jabber:x:event'><composing/></x></message><message/>"),
              (Lines{"OnMessage ", "OnMessageEvent 1 1 a@b/c", "OnMessage "}));
}

TEST_F(MessageTest, ReportsAnErrorOrAnInvitationAndNothingElse) {
    const std::pair<const char*, Lines> cases[] = {
        {"<message type='error' from='A@b'><body>x</body><error code='404'>Not &lt;found</error>"
         "<x xmlns='jabber:x:roster'><item jid='a'/></x></message>",
         {"OnError A@b 404 Not <found"}},
        {"<message type='error'><error code='99999'/></message>", {"OnError  0 "}},
        {"<message type='error'><x><error code='1'>no</error></x></message>", {"OnError  0 "}},
        {"<message from='A@b/c'><body>é &amp;lt;</body><subject>s</subject>"
         "<wrap><x xmlns='jabber:x:conference' jid='room@b'/></wrap></message>",
         {"OnGCInvite10 room@b A@b/c Ã© &lt; s"}},
        {"<message><x xmlns='jabber:x:conference'/><x xmlns='jabber:x:roster'/></message>", {}}};
    for (const auto& [stanza, lines] : cases) EXPECT_EQ(Raised(stanza), lines) << stanza;
}

}  // namespace
}  // namespace quorix
