// In the modern mode whatever is received is text, wherever it is read.
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

// "%" stands for the value in a stanza, and in each line that it raises.
struct Reading {
    const char* stanza;
    Lines lines;
    std::vector<String> (*values)(cSession&, const EventRecorder&);  // where else the value is then
};

std::vector<String> None(cSession&, const EventRecorder&) { return {}; }

const Reading kReadings[] = {
    {"<message from='a@b/%' id='%'><body>%</body><subject>%</subject><thread>%</thread>"
     "<x xmlns='jabber:x:oob'><url>%</url></x><x xmlns='jabber:x:rtf'><richtext>%</richtext></x></message>",
     {"OnMessage %"},
     [](cSession& s, const EventRecorder& events) -> std::vector<String> {
         auto m = events.messages.back();
         return {s.GetResource(m->FromJid()), m->ID(), m->Subject(), m->Thread(), m->URL(), m->TextRtf()};
     }},
    {"<message type='error' from='%'><error code='1'>%</error></message>", {"OnError % 1 %"}, None},
    {"<message from='%'><body>%</body><subject>%</subject><x xmlns='jabber:x:conference' jid='%'/></message>",
     {"OnGCInvite10 % % % %"},
     None},
    {"<message from='%'><x xmlns='jabber:x:roster'><item jid='%' name='%'/></x></message>",
     {"OnReceiveRosterItem % % %"},
     None},
    {"<presence from='%/%'><status>%</status></presence>",
     {"OnPresence % % 1 0 3"},
     [](cSession& s, const EventRecorder& events) -> std::vector<String> {
         s.Presence().Clear();
         return {events.presences.back()->Status()};
     }},
    {"<presence from='%' type='subscribe'><status>%</status></presence>",
     {"OnSubscriptionRequest % 2 %"},
     None},
    {"<iq type='set'><query xmlns='jabber:iq:roster'><item jid='%' "
     "name='%'><group>%</group></item></query></iq>",
     {"OnRosterBegin", "OnRosterItem % 0", "OnRosterEnd", "OnIQ"},
     [](cSession& s, const EventRecorder&) -> std::vector<String> {
         auto item = s.Roster().Item(1);
         s.Roster().Clear();
         return {item->NickName(), item->Groups().Item(1)};
     }},
    {"<iq type='result' from='%'><query "
     "xmlns='jabber:iq:version'><name>%</name><version>%</version><os>%</os>"
     "</query></iq>",
     {"OnVersionResult % % % %", "OnIQ"},
     None},
    {"<iq type='set' from='%'><query xmlns='jabber:iq:oob'><desc>%</desc><url>%</url></query></iq>",
     {"OnOOBRequest % % %", "OnIQ"},
     None},
    {"<iq type='result' id='gcroom_1' from='%'><conference xmlns='jabber:iq:browse'>"
     "<user jid='%' name='%' type='%'/></conference></iq>",
     {"OnChatRoomBrowseResult % iq", "OnGroupChatItem % % % % user", "OnIQ"},
     None},
    {"<iq type='result' from='%'><vCard xmlns='vcard-temp'><FN>%</FN></vCard></iq>",
     {"OnVCardResult % iq", "OnIQ"},
     [](cSession&, const EventRecorder& events) -> std::vector<String> {
         return {events.vcard->FullName()};
     }},
    {"<iq type='result'><query xmlns='jabber:iq:search'><item jid='%'><a>%</a></item></query></iq>",
     {"OnSearchResults 1", "OnIQ"},
     [](cSession& s, const EventRecorder&) -> std::vector<String> {
         auto hit = s.Searchresults()->Item(1);
         return {hit->SearchItem(), hit->Fields()->Item(1)->FieldData()};
     }},
    {"<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='%'><name>%</name></agent>"
     "</query></iq>",
     {"OnAgentBegin", "OnAgentItem % agent", "OnAgentEnd", "OnIQ"},
     [](cSession& s, const EventRecorder&) -> std::vector<String> {
         String name = s.Agents().Item(1)->Name();
         s.Agents().Clear();
         return {name};
     }},
};

std::string Filled(StringView pattern, StringView value) {
    return Utf8FromText(ReplaceAll(pattern, u"%", value));
}
std::string Filled(const std::string& pattern, StringView value) {
    return Filled(StringView(TextFromUtf8(pattern)), value);
}

TEST_F(SessionTest, ReadsTextThroughoutInTheModernMode) {
    session->Mode(KV_Modern);
    LogIn();
    for (const String& value : {String(u"\u00e9 \U0001F600 \u9df9 \ud55c\uad6d\uc5b4 &amp;lt; \u00C3\u00A9"),
                                String(40000, u'\u9df9')}) {
        String escaped;
        AppendEscaped(escaped, value, Place::SingleQuotes);
        for (const Reading& reading : kReadings) {
            Lines expected;
            for (const std::string& line : reading.lines) expected.push_back(Filled(line, value));
            EXPECT_EQ(Raised(Filled(std::string(reading.stanza), escaped)), expected);
            for (const String& read : reading.values(*session, *events))
                EXPECT_EQ(read, value) << reading.stanza;
        }
    }
}

}  // namespace
}  // namespace quorix
