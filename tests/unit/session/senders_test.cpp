// Whatever value an application or a stranger gives, what goes out is what would go out with any other value.
#include <algorithm>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

// One value stands where it is tried; the others are harmless.
class Values {
public:
    Values(StringView tried, int place) : tried_(tried), place_(place) {}
    String operator()() { return String(used_++ == place_ ? tried_ : StringView(u"x")); }
    int Used() const { return used_; }

private:
    StringView tried_;
    int place_;
    int used_ = 0;
};

struct Sender {
    const char* name;
    void (*send)(cSession&, Values&);
};

std::shared_ptr<cGroupChat> RoomOf(StringView jid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(jid);
    room->NickName(nickname);
    return room;
}

std::shared_ptr<cRosterItem> ContactOf(cSession& s, Values& v) {
    auto item = s.CreateRosterItem();
    item->JID(v());
    item->NickName(v());
    return item;
}

std::shared_ptr<cMessage> MessageOf(cSession& s, Values& v) {
    auto message = s.CreateMessage(v(), MSG_Chat, v(), v());
    message->ID(v());
    message->FromJid(v());
    return message;
}

const Sender kSenders[] = {
    {"message", [](cSession& s, Values& v) { MessageOf(s, v)->SendMessage(); }},
    {"message with extensions",
     [](cSession& s, Values& v) {
         auto message = MessageOf(s, v);
         message->Thread(v());
         message->TextRtf(v());
         message->AddRoster(ContactOf(s, v));
         message->AddCC(u"a@b" + v());
         message->AddBCC(u"c@d" + v());
         message->SendMessage();
     }},
    {"event", [](cSession& s, Values& v) { s.SendEvent(v(), KV_Displayed, v()); }},
    {"own presence", [](cSession& s, Values& v) { s.Status(v()), s.SendMyPresence(); }},
    {"presence", [](cSession& s, Values& v) { s.SendPresence(v(), KV_Subscribe, v()); }},
    {"contact added",
     [](cSession& s, Values& v) {
         auto item = ContactOf(s, v);
         item->AddGroup(v());
         item->Add();
     }},
    {"contact changed", [](cSession& s, Values& v) { ContactOf(s, v)->Update(); }},
    {"registration form", [](cSession& s, Values& v) { s.GetAgentRegister(v(), v()); }},
    {"card asked for", [](cSession& s, Values& v) { s.SendVCardRequest(v()); }},
    {"card",
     [](cSession& s, Values& v) {
         auto card = std::make_shared<cVcard>();
         card->FullName(v());
         card->BusinessExtAddress(v());
         s.UpdateVcard(card);
     }},
    {"server browsed", [](cSession& s, Values& v) { s.BrowseChatServer(v(), v()); }},
    {"room browsed", [](cSession& s, Values& v) { s.BrowseChatRoom(v(), v()); }},
    {"room joined", [](cSession& s, Values& v) { s.SendGroupChatRequest(RoomOf(v(), v()), true); }},
    {"room left", [](cSession& s, Values& v) { s.SendGroupChatRequest(RoomOf(v(), v()), false); }},
    {"room presence", [](cSession& s, Values& v) { s.SendGroupChatPresence(v(), KV_Away, v()); }},
    {"nickname", [](cSession& s, Values& v) { s.ChangeGCNickName(RoomOf(v(), u"n"), v()); }},
    {"invitation", [](cSession& s, Values& v) { s.SendGCInvite10(v(), v()); }},
    {"version asked for", [](cSession& s, Values& v) { s.SendVersionRequest(v()); }},
    {"time asked for", [](cSession& s, Values& v) { s.SendTimeRequest(v()); }},
    {"last activity asked for", [](cSession& s, Values& v) { s.SendLastSeenRequest(v()); }},
    {"version", [](cSession& s, Values& v) { s.SendVersionResponse(v(), v(), v(), v()); }},
    {"time", [](cSession& s, Values& v) { s.SendTimeResponse(v(), v(), v(), v()); }},
    {"last activity", [](cSession& s, Values& v) { s.SendGetLastResponse(v(), v()); }},
    {"private data", [](cSession& s, Values& v) { s.StorePrivateData(u"a:" + v(), u"<d/>"); }},
    {"offer", [](cSession& s, Values& v) { s.SendOOBRequest(v(), v(), v()); }},
    {"offer taken", [](cSession& s, Values& v) { s.SendOOBComplete(v()); }},
    {"search",
     [](cSession& s, Values& v) {
         s.SearchFields()->Clear();
         s.SearchFields()->Add(u"nick", u"a" + v());
         s.Agents().Item(u"A")->Search();
     }},
    {"registration",
     [](cSession& s, Values& v) {
         auto agent = s.Agents().Item(u"A");
         agent->Fields().Clear();
         agent->AddField(u"nick", v());
         agent->Update();
     }},
    {"server address",
     [](cSession& s, Values& v) {
         s.ServerAddress(v());
         s.FetchAgents(), s.RemoveAccount(), s.SendOOBComplete(u"j");
         s.ServerAddress(u"s");
     }},
    {"resource",
     [](cSession& s, Values& v) {
         s.Resource(v()), s.CreateMessage(u"a", MSG_Chat, u"b", u"")->SendMessage();
     }},
};

// In the classic mode these are sent as they are.
const Sender kOwnSenders[] = {
    {"new password", [](cSession& s, Values& v) { s.ChangePassword(v()); }},
    {"own name", [](cSession& s, Values& v) { s.username(v()), s.ChangePassword(u"p"), s.username(u"u"); }},
};

// Hands back whatever it is told, as an application does that answers as documented.
class Bot : public SessionEvents {
public:
    explicit Bot(const std::shared_ptr<cSession>& session) : session_(session) {}

    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        s().SendEvent(message->FromJid(), KV_Delivered, message->ID());
        auto answer = s().CreateMessage(message->FromJid(), MSG_Chat, message->Body(), message->Subject());
        answer->Thread(message->Thread());
        answer->SendMessage();
    }
    void OnVersionRequest(StringView from, StringView /*id*/) override {
        s().SendVersionResponse(from, u"n", u"v", u"o");
    }
    void OnTimeRequest(StringView from, StringView /*id*/) override {
        s().SendTimeResponse(from, u"u", u"z", u"d");
    }
    void OnGetLastRequest(StringView from, StringView /*id*/) override {
        s().SendGetLastResponse(from, u"1");
    }
    void OnSubscriptionRequest(StringView from, std::int32_t /*kind*/, StringView status) override {
        s().SendPresence(from, KV_Subscribe_Accept, status);
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool /*available*/, StringView /*show*/,
                    std::int32_t /*kind*/, const NodePtr& /*node*/) override {
        const String from = Concat({item->JID(), u"/", item->Resource()});
        s().SendVersionRequest(from), s().SendVCardRequest(from), s().SendTimeRequest(from);
        s().SendPresence(u"", KV_Available, item->Status());
    }
    void OnGCInvite10(StringView room, StringView /*from*/, StringView /*body*/, StringView /*subject*/,
                      const NodePtr& /*node*/) override {
        s().SendGroupChatRequest(RoomOf(room, u"n"), true);
    }
    void OnGroupChat(const std::shared_ptr<cGroupChat>& room, StringView /*from*/,
                     const NodePtr& /*node*/) override {
        s().SendGroupChatRequest(room, true);
    }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& room, const NodePtr& /*node*/) override {
        s().SendGroupChatRequest(room, true);
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& item, StringView /*from*/,
                         const NodePtr& /*node*/) override {
        s().SendVersionRequest(item->JID());
    }
    void OnOOBRequest(StringView from, StringView /*text*/, StringView /*url*/) override {
        s().SendOOBComplete(from);
    }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& item, StringView /*from*/) override {
        item->SetSession(session_.lock());
        item->Add();
    }
    void OnRosterItem(const std::shared_ptr<cRosterItem>& item,
                      const std::shared_ptr<cPresenceItem>& /*item*/, const NodePtr& /*node*/) override {
        item->Update();
    }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr& /*node*/) override {
        agent->GetSearchFields(), agent->QueryGateway(), agent->Update(), agent->Delete();
        s().GetAgentRegister(agent->JID(), u"i");
        s().Agents().Remove(agent->Name());
    }

private:
    cSession& s() const { return *session_.lock(); }

    std::weak_ptr<cSession> session_;
};

// What a server or a stranger sends, around the value in it.
struct Received {
    const char* name;
    StringView before, after;
};

const Received kReceived[] = {
    {"id of a message", u"<message from='a@b/r' id='", u"'><body>b</body></message>"},
    {"resource of a message", u"<message from='a@b/", u"'><body>b</body></message>"},
    {"thread", u"<message from='a@b'><body>b</body><thread>", u"</thread></message>"},
    {"body", u"<message from='a@b'><body>", u"</body></message>"},
    {"subject", u"<message from='a@b'><body>b</body><subject>", u"</subject></message>"},
    {"who asks for the version", u"<iq type='get' id='1' from='a@b/",
     u"'><query xmlns='jabber:iq:version'/></iq>"},
    {"who asks for the time", u"<iq type='get' id='1' from='", u"'><query xmlns='jabber:iq:time'/></iq>"},
    {"who asks for the last activity", u"<iq type='get' id='1' from='",
     u"'><query xmlns='jabber:iq:last'/></iq>"},
    {"why somebody subscribes", u"<presence type='subscribe' from='a@b'><status>", u"</status></presence>"},
    {"resource of a presence", u"<presence from='a@b/", u"'/>"},
    {"status", u"<presence from='a@b/r'><status>", u"</status></presence>"},
    {"room of an invitation", u"<message from='a@b'><x xmlns='jabber:x:conference' jid='", u"'/></message>"},
    {"room", u"<iq type='result' id='gcsrv_1' from='c'><conference xmlns='jabber:iq:browse'><item jid='",
     u"'/></conference></iq>"},
    {"nickname for a room", u"<iq type='result' from='r@c'><query xmlns='jabber:iq:conference'><nick>",
     u"</nick></query></iq>"},
    {"who is in a room",
     u"<iq type='result' id='gcroom_1' from='r@c'><conference xmlns='jabber:iq:browse'><user jid='",
     u"'/></conference></iq>"},
    {"who offers a file", u"<iq type='set' id='1' from='", u"'><query xmlns='jabber:iq:oob'/></iq>"},
    {"contact in a message", u"<message><x xmlns='jabber:x:roster'><item jid='",
     u"' name='n'/></x></message>"},
    {"contact's name in a message", u"<message><x xmlns='jabber:x:roster'><item jid='j' name='",
     u"'/></x></message>"},
    {"contact", u"<iq type='set'><query xmlns='jabber:iq:roster'><item jid='", u"'/></query></iq>"},
    {"group of a contact", u"<iq type='set'><query xmlns='jabber:iq:roster'><item jid='g'><group>",
     u"</group></item></query></iq>"},
    {"agent", u"<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='",
     u"'><name>B</name></agent></query></iq>"},
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

class Senders : public SessionTest, public ::testing::WithParamInterface<eMode> {
protected:
    Senders() {
        session->Mode(GetParam());
        LogIn();
        session->AuthType(KV_PlainAuth);  // so that a password may go out
        Say("<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='a'><name>A</name>"
            "</agent></query></iq>");
    }

    bool IsClassic() const { return GetParam() == KV_Classic; }

    Sent TakeSent() {
        const std::string bytes = Heard();
        const String text = IsClassic() ? WireFromBytes(bytes) : TextFromUtf8(bytes);
        auto document = XmlDocument::Create();
        if (!document->Load(Concat({u"<sent>", text, u"</sent>"}))) return {};
        return {ShapeOf(document->Root()), ContentOf(document->Root())};
    }

    void Try(const Sender& sender, StringView value);
    void Try(const Received& received, StringView value);

    Sent Answered(const Received& received, StringView value) {
        String stanza(received.before);
        AppendEscaped(stanza, value, Place::SingleQuotes);
        Say(Utf8FromText(stanza.append(received.after)));
        return TakeSent();
    }

    const std::shared_ptr<Bot> bot = std::make_shared<Bot>(session);
};

void Senders::Try(const Sender& sender, StringView value) {
    int places = 1;
    for (int place = 0; place < places; ++place) {
        Values harmless(u"y", place), tried(value, place);
        sender.send(*session, harmless);
        const Sent expected = TakeSent();
        sender.send(*session, tried);
        const Sent sent = TakeSent();
        places = tried.Used();
        const std::string what =
            sender.name + (" " + std::to_string(place) + ": ") + Utf8FromText(value.substr(0, 80));
        EXPECT_TRUE(!sent.shape.empty() && sent.shape == expected.shape) << what << "\n"
                                                                         << Utf8FromText(sent.shape);
        if (IsClassic()) continue;
        EXPECT_NE(sent.content.find(WithoutForbidden(value)), String::npos)
            << what << ": is not what was given";
    }
}

void Senders::Try(const Received& received, StringView value) {
    const Sent expected = Answered(received, u"y");
    const Sent sent = Answered(received, value);
    EXPECT_TRUE(!sent.shape.empty() && sent.shape == expected.shape)
        << received.name << ": " << Utf8FromText(value.substr(0, 80)) << "\n"
        << Utf8FromText(sent.shape);
    EXPECT_TRUE(IsClassic() || sent.content.find(value) != String::npos)
        << received.name << ": " << Utf8FromText(value.substr(0, 80)) << ": is not what was received";
}

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

TEST_P(Senders, NoValueLeavesItsPlaceAndInTheModernModeEachArrivesAsItWasGiven) {
    for (const String& value : kHostile) {
        for (const Sender& sender : kSenders) Try(sender, value);
    }
    session->Advise(bot);
    for (const String& value : kHostile) {
        for (const Received& received : kReceived) Try(received, value);
    }
    session->Unadvise(bot);
    for (const String& value : kUnspeakable) {
        for (const Sender& sender : kSenders) Try(sender, value);
    }
    if (IsClassic()) return;
    for (const Sender& sender : kOwnSenders) {
        for (const String& value : kHostile) Try(sender, value);
    }
}

TEST_P(Senders, AFieldWhoseNameCannotBeATagIsLeftOut) {
    auto agent = session->Agents().Item(u"A");
    for (StringView name : {u"a b", u"a><b", u"", u"a:b", u"1", u"a\x1"}) {
        agent->AddField(name, u"v");
        session->SearchFields()->Add(name, u"v");
    }
    const String name = IsClassic() ? u"\u00C3\u00A9" : u"\u00e9";
    for (StringView good : {StringView(u"nick"), StringView(name)}) {
        agent->AddField(good, u"v");
        session->SearchFields()->Add(good, u"v");
    }
    agent->Update();
    agent->Search();
    const std::string sent = Heard();
    EXPECT_EQ(sent.find("<nick>v</nick><é>v</é></query></iq>", 0), sent.find("jabber:iq:register") + 20);
    EXPECT_EQ(sent.rfind("<nick>v</nick><é>v</é></query></iq>"), sent.rfind("jabber:iq:search") + 18);
    for (StringView nameSpace : {u"a b:c", u":c", u"a'/><b:c"}) {
        EXPECT_EQ(ErrorOf([&] { session->StorePrivateData(nameSpace, u""); }), ERR_InvalidCall);
    }
}

// The header is closed, so that what has been said since is one document.
Sent SaidAtLogin(std::string bytes, bool classic) {
    bytes += "</stream:stream>";
    auto document = XmlDocument::Create();
    if (!document->Load(classic ? WireFromBytes(bytes) : TextFromUtf8(bytes))) return {};
    return {ShapeOf(document->Root()), ContentOf(document->Root())};
}

TEST_P(Senders, NoValueLeavesItsPlaceAtTheLogin) {
    auto logIn = [&](StringView value, eAuthType type, bool newUser) {
        session->AuthType(type);
        session->Resource(value);
        session->ServerAddress(value);
        if (!IsClassic()) session->username(value), session->Password(value);
        session->Disconnect();
        OpenStream(newUser);
        String form = u"<iq type='result'><query xmlns='jabber:iq:register'><key>";
        AppendEscaped(form, value, Place::Content);
        if (newUser) Say(Utf8FromText(form + u"</key></query></iq>"));
        return SaidAtLogin(Heard(), IsClassic());
    };
    for (auto [type, newUser] :
         {std::pair(KV_PlainAuth, false), {KV_DigestAuth, false}, {KV_PlainAuth, true}}) {
        const Sent expected = logIn(u"x", type, newUser);
        for (const String& value : kHostile) {
            const Sent sent = logIn(value, type, newUser);
            EXPECT_TRUE(!sent.shape.empty() && sent.shape == expected.shape)
                << Utf8FromText(value.substr(0, 80));
            bool isThere = sent.content.find(u"\x1" + value + u"\x2") != String::npos;
            EXPECT_TRUE(isThere || IsClassic()) << Utf8FromText(value.substr(0, 80));
        }
    }
}

TEST_P(Senders, AreRefusedInTheModernModeWhileNotConnectedAndDoNothingInTheClassicOne) {
    EXPECT_EQ(ErrorOf([&] { session->Mode(GetParam()); }), ERR_InvalidCall) << "connected";
    auto room = RoomOf(u"r@c", u"n");
    session->Disconnect();
    Heard();
    events->outgoing.clear();
    for (const Sender& sender : kSenders) {
        Values values(u"", -1);
        EXPECT_EQ(ErrorOf([&] { sender.send(*session, values); }), IsClassic() ? 0 : ERR_NotConnected)
            << sender.name;
    }
    EXPECT_EQ(ErrorOf([&] { session->ChangeGCNickName(room, u"new"); }), IsClassic() ? 0 : ERR_NotConnected);
    EXPECT_EQ(room->NickName(), IsClassic() ? u"new" : u"n");
    session->Disconnect();
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(events->outgoing, Lines{});
    EXPECT_EQ(ErrorOf([&] { session->Mode(static_cast<eMode>(2)); }), ERR_Overflow);
    EXPECT_EQ(session->Mode(), GetParam());
}

// A handler that closes the connection stops the login, and no error comes of it.
TEST_P(Senders, WhatTheSessionSendsByItselfIsNeverRefused) {
    for (eAuthType type : {KV_PlainAuth, KV_AutoAuth}) {
        session->AuthType(type);
        session->Disconnect();
        session->Connect();
        env.DoEvents();
        Heard();
        events->hook = [&](const std::string& event) {
            if (event == "OnIncomingXML") session->Disconnect();
        };
        Say("<stream:stream id='1'>");
        events->hook = nullptr;
        EXPECT_EQ(Heard(), "<presence type=\"unavailable\"><status/></presence></stream:stream>");
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Senders, ::testing::Values(KV_Classic, KV_Modern));

}  // namespace
}  // namespace quorix
