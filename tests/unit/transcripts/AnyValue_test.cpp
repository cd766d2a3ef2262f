// Whatever value an application or a stranger gives, what goes out is what would go out with any other value.
#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "quorix/base/WireText.h"
#include "quorix/base/XmlText.h"
#include "quorix/xml/XmlDocument.h"
#include "tests/transcripts/runner/Runner.h"
#include "tests/unit/transcripts/NativeFace.h"

namespace quorix::transcripts {
namespace {

using Lines = std::vector<std::string>;

// Steps of an application. Each question mark stands for a value: one is tried, the others are harmless.
const Lines kSenders = {
    "m := session.CreateMessage(?, 1, ?, ?) .ID:=? .FromJid:=? .Thread:=? .TextRtf:=? .SendMessage",
    "m := session.CreateMessage(?, 1, \"\", \"\") .AddCC(?) .AddBCC(?) .SendMessage",
    "item := new cRosterItem .JID:=? .NickName:=?; "
    "m := session.CreateMessage(\"\", 1, \"\", \"\") .AddRoster(item) .SendMessage",
    "session.SendEvent(?, 2, ?)",
    "session .Status:=? .SendMyPresence",
    "session.SendPresence(?, 2, ?)",
    "item := session.CreateRosterItem .JID:=? .NickName:=? .AddGroup(?) .Add",
    "item := session.CreateRosterItem .JID:=? .NickName:=? .Update",
    "session.GetAgentRegister(?, ?)",
    "session.SendVCardRequest(?)",
    "card := new cVcard .FullName:=? .BusinessExtAddress:=?; session.UpdateVcard(card)",
    "session.BrowseChatServer(?, ?)",
    "session.BrowseChatRoom(?, ?)",
    "room := new cGroupChat .JID:=? .NickName:=?; session.SendGroupChatRequest(room, True)",
    "room := new cGroupChat .JID:=? .NickName:=?; session.SendGroupChatRequest(room, False)",
    "room := new cGroupChat .JID:=?; session.ChangeGCNickName(room, ?)",
    "session.SendGroupChatPresence(?, 2, ?)",
    "session.SendGCInvite10(?, ?)",
    "session.SendVersionRequest(?)",
    "session.SendTimeRequest(?)",
    "session.SendLastSeenRequest(?)",
    "session.SendVersionResponse(?, ?, ?, ?)",
    "session.SendTimeResponse(?, ?, ?, ?)",
    "session.SendGetLastResponse(?, ?)",
    "session.StorePrivateData(a?, \"<d/>\")",  // the value behind a name and a colon
    "session.SendOOBRequest(?, ?, ?)",
    "session.SendOOBComplete(?)",
    "fields := session.SearchFields .Add(\"nick\", a?); session.Agents.Item(\"A\").Search",
    "agent := session.Agents.Item(\"A\") .AddField(\"nick\", ?) .Update",
    "session .ServerAddress:=? .FetchAgents .RemoveAccount .SendOOBComplete(\"j\")",
    "session.Resource := ?; m := session.CreateMessage(\"a\", 1, \"b\", \"\") .SendMessage",
};

// In the classic mode these are sent as they are.
const Lines kOwnSenders = {"session.ChangePassword(?)", "session .username:=? .ChangePassword(\"p\")"};

// What a stranger says, and how an application answers that hands back whatever it is told.
const std::string kReply =
    "OnMessage; session.SendEvent($1.FromJid, 3, $1.ID); "
    "m := session.CreateMessage($1.FromJid, 1, $1.Body, $1.Subject) .Thread:=$1.Thread .SendMessage";
const std::string kJoin = "; session.SendGroupChatRequest($1, True); OnIQ";
const std::string kAdd = "OnReceiveRosterItem; $1 .SetSession(session) .Add";
const std::string kUpdate = "OnRosterBegin; OnRosterItem; $1.Update; OnRosterEnd; OnIQ";
const Lines kAnswers = {
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

const std::string kNewForm =
    "server: <iq type='result'><query xmlns='jabber:iq:register'><key>?</key></query></iq>; OnIQ";
const Lines kLogins = {
    "session .AuthType:=KV_DigestAuth .ServerAddress:=? .Connect(False); server: <stream:stream id='s1'>",
    "session .ServerAddress:=? .Resource:=? .Connect(False); server: <stream:stream id='s1'>",
    "session .ServerAddress:=? .Connect(True); server: <stream:stream id='s1'>; " + kNewForm,
};
const Lines kOwnLogins = {
    "session .AuthType:=KV_DigestAuth .username:=? .Connect(False); server: <stream:stream id='s1'>",
    "session .username:=? .Password:=? .Connect(False); server: <stream:stream id='s1'>",
    "session .username:=? .Password:=? .Connect(True); server: <stream:stream id='s1'>; " + kNewForm,
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

class AnyValue : public ::testing::TestWithParam<std::string> {
protected:
    bool IsClassic() const { return GetParam() == "KV_Classic"; }

    // Each of the values in each of the places.
    void Try(const std::string& beginning, const Lines& allSteps, std::span<const String> values) {
        for (const std::string& steps : allSteps) {
            const auto places = std::count(steps.begin(), steps.end(), '?');
            for (int place = 0; place < places; ++place) {
                SCOPED_TRACE(steps + " " + std::to_string(place));
                const String shape = Play(beginning, steps, u"y", place).shape;
                for (const String& value : values)
                    ExpectInPlace(Play(beginning, steps, value, place), shape, value);
            }
        }
    }

    // Where nobody listens: refused in the modern mode, silence in the classic one.
    void ExpectRefused(const std::string& steps) {
        Scenario scenario = ReadBeginning("gone with an agent", GetParam());
        AddSteps(scenario, steps, {}, -1);
        if (!IsClassic()) scenario.steps.back().text += " fails with 10057";
        NativeFace face;
        EXPECT_EQ(Played(face, scenario, {}), "") << steps;
    }

private:
    void ExpectInPlace(const Sent& sent, const String& shape, const String& value) {
        const std::string what = Utf8FromText(value.substr(0, 80));
        EXPECT_TRUE(!sent.shape.empty() && sent.shape == shape) << what << "\n" << Utf8FromText(sent.shape);
        const bool isThere = sent.content.find(WithoutForbidden(value)) != String::npos;
        EXPECT_TRUE(isThere || IsClassic()) << what << " is not what was given";
    }

    // What goes out when `value` stands at that place.
    Sent Play(const std::string& beginning, const std::string& steps, const String& value, int place) {
        Scenario scenario = ReadBeginning(beginning, GetParam());
        scenario.steps.push_back(
            {"", 2, "session.AuthType := KV_PlainAuth"});  // so that a password may go out
        scenario.steps.push_back({"", 2, "whatever goes out"});
        AddSteps(scenario, steps, value, place);
        NativeFace face;
        EXPECT_EQ(Played(face, scenario, value), "");
        return Read(face.Heard());
    }

    static std::string Played(NativeFace& face, const Scenario& scenario, const String& value) {
        Runner runner(face, scenario);
        runner.Let("v", value);
        runner.Let("av", u"a:" + value);
        runner.Let("x", String(u"x"));
        runner.Let("ax", String(u"a:x"));
        return runner.Play();
    }

    static void AddSteps(Scenario& scenario, const std::string& steps, const String& value, int place) {
        bool isHandled = false;
        for (const std::string& step : SplitOutside(steps, "; ")) {
            const bool isEvent = step.starts_with("On");
            isHandled = isHandled || isEvent;
            scenario.steps.push_back({step, isHandled && !isEvent ? 4U : 2U, Filled(step, value, place)});
        }
    }

    // Names for values that an application gives, the value itself in what a stranger says.
    static std::string Filled(const std::string& step, const String& value, int& place) {
        const bool isSaid = step.starts_with("server: ");
        String escaped;
        AppendEscaped(escaped, value, Place::SingleQuotes);
        std::string filled;
        for (char c : step) {
            const bool isTried = c == '?' && place-- == 0;
            if (c != '?') filled += c;
            if (c == '?') filled += isSaid ? (isTried ? Utf8FromText(escaped) : "x") : isTried ? "v" : "x";
        }
        return filled;
    }

    Sent Read(const std::string& bytes) const {
        String text = IsClassic() ? WireFromBytes(bytes) : TextFromUtf8(bytes);
        if (text.starts_with(u"<stream:stream")) text += u"</stream:stream>";
        auto document = XmlDocument::Create();
        if (!document->Load(Concat({u"<sent>", text, u"</sent>"}))) return {};
        return {ShapeOf(document->Root()), ContentOf(document->Root())};
    }
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
    Try("logged in with an agent", kSenders, kHostile);
    Try("logged in with an agent", kSenders, kUnspeakable);
    Try("logged in with an agent", kAnswers, kHostile);
    Try("settings", kLogins, kHostile);
    if (IsClassic()) return;
    Try("logged in", kOwnSenders, kHostile);
    Try("settings", kOwnLogins, kHostile);
}

TEST_P(AnyValue, GoesNowhereWithoutAConnectionAndIsRefusedInTheModernMode) {
    for (const std::string& steps : kSenders) ExpectRefused(steps);
    if (!IsClassic()) ExpectRefused("session.SendXML(?)"), ExpectRefused("session.FetchRoster");
}

INSTANTIATE_TEST_SUITE_P(Modes, AnyValue, ::testing::Values("KV_Classic", "KV_Modern"));

}  // namespace
}  // namespace quorix::transcripts
