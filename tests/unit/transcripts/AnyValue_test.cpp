// Whatever value an application or a stranger gives, what goes out is what would go out with any other value.
#include <gtest/gtest.h>

#include <span>

#include "quorix/base/WireText.h"
#include "quorix/base/XmlText.h"
#include "quorix/xml/XmlDocument.h"
#include "testkit/Senders.h"
#include "testkit/transcripts/NativeFace.h"
#include "testkit/transcripts/Runner.h"
#include "tests/unit/ErrorOf.h"

namespace quorix::transcripts {
namespace {

using testkit::kSenders;
using testkit::Sender;

// In the classic mode these are sent as they are.
const std::vector<Sender> kOwnSenders = {
    {"password", [](cSession& s, const testkit::Values& v) { s.ChangePassword(v()); }},
    {"user", [](cSession& s, const testkit::Values& v) { s.username(v()), s.ChangePassword(u"p"); }},
};

const std::string kLoggingIn = "application.Send; server: <stream:stream id='s1'>";
const std::vector<Sender> kLogins = {
    {"login",
     [](cSession& s, const testkit::Values& v) { s.ServerAddress(v()), s.Resource(v()), s.Connect(); }},
    {"digest login",
     [](cSession& s, const testkit::Values& v) {
         s.AuthType(KV_DigestAuth);
         s.ServerAddress(v()), s.Connect();
     }},
};
const std::vector<Sender> kOwnLogins = {
    {"login", [](cSession& s, const testkit::Values& v) { s.username(v()), s.Password(v()), s.Connect(); }},
    {"digest login",
     [](cSession& s, const testkit::Values& v) {
         s.AuthType(KV_DigestAuth);
         s.username(v()), s.Connect();
     }},
};

const std::string kBecomingAUser =
    kLoggingIn +
    "; server: <iq type='result'><query xmlns='jabber:iq:register'><key>?</key></query></iq>; OnIQ";
const Sender kNewUser = {
    "new user", [](cSession& s, const testkit::Values& v) { s.ServerAddress(v()), s.Connect(true); }};
const Sender kOwnNewUser = {"new user", [](cSession& s, const testkit::Values& v) {
                                s.username(v()), s.Password(v()), s.Connect(true);
                            }};

// What a stranger says, and how an application answers that hands back whatever it is told.
const std::string kReply =
    "OnMessage; session.SendEvent($1.FromJid, 3, $1.ID); "
    "m := session.CreateMessage($1.FromJid, 1, $1.Body, $1.Subject) .Thread:=$1.Thread .SendMessage";
const std::string kJoin = "; session.SendGroupChatRequest($1, True); OnIQ";
const std::string kAdd = "OnReceiveRosterItem; $1 .SetSession(session) .Add";
const std::string kUpdate = "OnRosterBegin; OnRosterItem; $1.Update; OnRosterEnd; OnIQ";
const std::vector<std::string> kAnswers = {
    "server: <message from='a@b/r' id='?'><body>?</body><subject>?</subject><thread>?</thread></message>; " +
        kReply,
    "server: <message from='a@b/?'><body>b</body></message>; " + kReply,
    "server: <iq type='get' id='1' from='a@b/?'><query xmlns='jabber:iq:version'/></iq>; "
    "OnVersionRequest; session.SendVersionResponse($1, \"n\", \"v\", \"o\"); OnIQ",
    "server: <iq type='get' id='1' from='?'><query xmlns='jabber:iq:time'/></iq>; "
    "OnTimeRequest; session.SendTimeResponse($1, \"u\", \"z\", \"d\"); OnIQ",
    "server: <iq type='get' id='1' from='?'><query xmlns='jabber:iq:last'/></iq>; "
    "OnGetLastRequest; session.SendGetLastResponse($1, \"1\"); OnIQ",
    "server: <presence type='subscribe' from='a@b'><status>?</status></presence>; "
    "OnSubscriptionRequest; session.SendPresence($1, 4, $3)",
    "server: <presence from='a@b/?'><status>?</status></presence>; OnPresence; "
    "session .SendVersionRequest($1.Resource) .SendVCardRequest($1.Resource) .SendPresence(\"\", 0, "
    "$1.Status)",
    "server: <message from='a@b'><x xmlns='jabber:x:conference' jid='?'/></message>; OnGCInvite10; "
    "room := new cGroupChat .JID:=$1 .NickName:=\"n\"; session.SendGroupChatRequest(room, True)",
    "server: <iq type='result' id='gcsrv_1' from='c'><conference xmlns='jabber:iq:browse'><item jid='?'/>"
    "</conference></iq>; OnChatServerBrowseResult" +
        kJoin,
    "server: <iq type='result' from='r@c'><query xmlns='jabber:iq:conference'><nick>?</nick></query></iq>; "
    "OnGroupChat" +
        kJoin,
    "server: <iq type='result' id='gcroom_1' from='r@c'><conference xmlns='jabber:iq:browse'><user jid='?'/>"
    "</conference></iq>; OnChatRoomBrowseResult; OnGroupChatItem; session.SendVersionRequest($1.JID); OnIQ",
    "server: <iq type='set' id='1' from='?'><query xmlns='jabber:iq:oob'/></iq>; "
    "OnOOBRequest; session.SendOOBComplete($1); OnIQ",
    "server: <message><x xmlns='jabber:x:roster'><item jid='?' name='?'/></x></message>; " + kAdd,
    "server: <iq type='set'><query xmlns='jabber:iq:roster'><item jid='?'/></query></iq>; " + kUpdate,
    "server: <iq type='set'><query xmlns='jabber:iq:roster'><item "
    "jid='g'><group>?</group></item></query></iq>; " +
        kUpdate,
    "server: <iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent "
    "jid='?'><name>B</name></agent>"
    "</query></iq>; OnAgentBegin; OnAgentItem; agent := $1 .GetSearchFields .QueryGateway .Update .Delete; "
    "session.GetAgentRegister(agent.JID, \"i\"); OnAgentEnd; OnIQ",
};

// The names of all elements and attributes in `xml`, "" when it is not well-formed.
String ShapeOf(const XmlNode& element) {
    String shape = u"<" + element.Name();
    for (const auto& attribute : element.Attributes()) shape += u" " + attribute.first;
    for (XmlNode child = element.FirstElement(); child; child = child.NextElement()) shape += ShapeOf(child);
    return shape + u">";
}

// Every value in the element, each in brackets.
String ContentOf(const XmlNode& element) {
    String content;
    for (const auto& attribute : element.Attributes()) content += u"\x1" + attribute.second + u"\x2";
    if (!element.FirstElement()) return content + u"\x1" + element.Text() + u"\x2";
    for (XmlNode child = element.FirstElement(); child; child = child.NextElement())
        content += ContentOf(child);
    return content;
}

struct Sent {
    String shape;
    String content;
};

class AnyValue : public ::testing::TestWithParam<eMode> {
protected:
    bool IsClassic() const { return GetParam() == KV_Classic; }

    // Each of the values in each place: each question mark of the steps stands for one, and `sender` asks for
    // more.
    void Try(const std::string& steps, std::span<const String> values, const Sender& sender = {}) {
        SCOPED_TRACE(sender.name != nullptr ? sender.name : steps);
        for (int place = 0, places = 1; place < places; ++place) {
            const String shape = Play(steps, sender, u"y", place).shape;
            places = asked_;
            for (const String& value : values) ExpectInPlace(Play(steps, sender, value, place), shape, value);
        }
    }
    void TryEach(const std::vector<Sender>& senders, const std::string& steps,
                 std::span<const String> values) {
        for (const Sender& sender : senders) Try(steps, values, sender);
    }

    // What goes out when `value` stands in that place, and harmless values in the others.
    Sent Play(const std::string& steps, const Sender& sender, const String& value, int place) {
        asked_ = 0;
        const auto next = [&] { return asked_++ == place ? value : String(u"x"); };
        Scenario scenario{"", {}, {{"", 2, "whatever goes out"}}};
        bool isHandled = false;
        for (const std::string& step : SplitOutside(steps, "; ")) {
            const bool isEvent = step.starts_with("On");
            isHandled = isHandled || isEvent;
            scenario.steps.push_back({step, isHandled && !isEvent ? 4U : 2U, Filled(step, next)});
        }
        NativeFace face([&](Stage& stage) {
            auto session = Session(stage.Network(), !steps.starts_with(kLoggingIn));
            stage.Add("session", session);
            stage.Add("application.Send",
                      [&, session](const auto&) { return sender.send(*session, next), String(); });
            return session;
        });
        EXPECT_EQ(Runner(face, scenario).Play(), "");
        return Read(face.Heard());
    }

    // Logged in with the agent "A", or not yet connected.
    static std::shared_ptr<cSession> Session(testkit::DeterministicEnvironment& network, bool isLoggedIn) {
        auto session = cSession::Create();
        session->Mode(GetParam());
        session->ServerAddress(u"s");
        session->username(u"u");
        session->Password(u"p");
        session->Resource(u"r");
        session->AuthType(KV_PlainAuth);  // so that a password may go out
        if (!isLoggedIn) return session;
        session->Connect();
        network.DoEvents();
        for (const char* said : {"<stream:stream id='s1'>", "<iq type='result' id='kv_login'/>",
                                 "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'>"
                                 "<agent jid='a'><name>A</name></agent></query></iq>"}) {
            network.Peer().Say(said);
            network.DoEvents();
        }
        network.Peer().TakeHeard();
        return session;
    }

private:
    void ExpectInPlace(const Sent& sent, const String& shape, const String& value) {
        const std::string what = Utf8FromText(value.substr(0, 80));
        EXPECT_TRUE(!sent.shape.empty() && sent.shape == shape) << what << "\n" << Utf8FromText(sent.shape);
        const bool isThere = sent.content.find(WithoutForbidden(value)) != String::npos;
        EXPECT_TRUE(isThere || IsClassic()) << what << " is not what was given";
    }

    // The value itself in what a stranger says.
    template <class Next>
    static std::string Filled(const std::string& step, Next next) {
        String filled;
        for (char16_t c : TextFromUtf8(step)) {
            c == u'?' ? AppendEscaped(filled, next(), Place::SingleQuotes) : filled.push_back(c);
        }
        return Utf8FromText(filled);
    }

    Sent Read(const std::string& bytes) const {
        String text = IsClassic() ? WireFromBytes(bytes) : TextFromUtf8(bytes);
        if (text.starts_with(u"<stream:stream")) text += u"</stream:stream>";
        auto document = XmlDocument::Create();
        if (!document->Load(Concat({u"<sent>", text, u"</sent>"}))) return {};
        return {ShapeOf(document->Root()), ContentOf(document->Root())};
    }

    int asked_ = 0;
};

const String kHostile[] = {
    u"o'neil",
    u"'/><presence type='unavailable'/><x a='",
    u"\" b=\"<c/>",
    u"x</id></x></message><iq type='set'><query xmlns='jabber:iq:register'><remove/></query></iq><message>",
    u"<!-- <![CDATA[ <?x",
    u"]]>",
    u"a & b &amp; &lt &#1; &#xD800; &#x110000; &#x; &nbsp; &&#233;&#xE9; &",
    u"<\u00e9\u4e2d\U0001F600'\"&]]>",
    u" \t\r\n ",
    String(40000, u'<'),
    String(20000, u'\u00e9') + String(20000, u'\''),
};

const String kUnspeakable[] = {
    String(u"\0\x1\x8\x0B\x1F", 5),
    u"\uFFFE\uFFFF",
    u"\xD800 \xDC00 \xD83D",
    u"\x1\U0001F600<",
};

TEST_P(AnyValue, StaysInItsPlaceAndInTheModernModeArrivesAsItWasGiven) {
    TryEach(kSenders, "application.Send", kHostile);
    TryEach(kSenders, "application.Send", kUnspeakable);
    TryEach(kLogins, kLoggingIn, kHostile);
    Try(kBecomingAUser, kHostile, kNewUser);
    for (const std::string& answer : kAnswers) Try(answer, kHostile);
    if (IsClassic()) return;
    TryEach(kOwnSenders, "application.Send", kHostile);
    TryEach(kOwnLogins, kLoggingIn, kHostile);
    Try(kBecomingAUser, kHostile, kOwnNewUser);
}

TEST_P(AnyValue, GoesNowhereWithoutAConnectionAndIsRefusedInTheModernMode) {
    testkit::DeterministicEnvironment network;
    auto session = Session(network, true);
    session->Disconnect();
    network.Peer().TakeHeard();
    auto refusal = [&](auto send) { return ErrorOf([&] { send(*session, [] { return String(u"x"); }); }); };
    for (const Sender& sender : kSenders)
        EXPECT_EQ(refusal(sender.send), IsClassic() ? 0 : 10057) << sender.name;
    if (!IsClassic()) {
        EXPECT_EQ(refusal([](cSession& s, const auto& v) { s.SendXML(v()); }), 10057);
        EXPECT_EQ(refusal([](cSession& s, const auto&) { s.FetchRoster(); }), 10057);
    }
    EXPECT_EQ(network.Peer().Heard(), "");
}

INSTANTIATE_TEST_SUITE_P(Modes, AnyValue, ::testing::Values(KV_Classic, KV_Modern));

}  // namespace
}  // namespace quorix::transcripts
