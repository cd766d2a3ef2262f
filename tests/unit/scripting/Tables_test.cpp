// Classes driven by names, as every script face drives them.
#include <map>

#include "quorix/link/SessionLink.h"
#include "quorix/scripting/Classes.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix::scripting {
namespace {

// An object, and calls of its members by name.
class Scripted {
public:
    explicit Scripted(const char* className) : Scripted(TableNamed(className).MakeObject()) {}
    explicit Scripted(Value object) : object_(std::get<Object>(std::move(object))) {}

    Value Get(const char* name, Values arguments = {}) const { return Ask(name, MemberKind::Get, arguments); }
    Value Do(const char* name, Values arguments = {}) const {
        return Ask(name, MemberKind::Method, arguments);
    }
    void Put(const char* name, Value value) const { Ask(name, MemberKind::Put, {std::move(value)}); }
    const Object& Self() const { return object_; }

private:
    static const ClassTable& TableNamed(std::string_view name) {
        for (const ClassTable* table : Classes()) {
            if (table->Name() == name) return *table;
        }
        throw std::logic_error("no such class");
    }
    Value Ask(const char* name, MemberKind kind, const Values& arguments) const {
        return Call(*object_.table->Find(name, kind), object_.instance, arguments);
    }

    Object object_;
};

Value Text(StringView text) { return String(text); }
Value Number(std::int32_t number) { return number; }

TEST(Tables, BindMembersByName) {
    const Scripted contact("cRosterItem");
    contact.Put("NickName", Text(u"Romeo"));
    EXPECT_EQ(contact.Get("NickName"), Text(u"Romeo"));
    contact.Do("AddGroup", {Text(u"Friends")});
    const Scripted groups(contact.Get("Groups"));
    EXPECT_EQ(groups.Get("Item", {Number(1)}), Text(u"Friends"));
    EXPECT_EQ(groups.Get("Item", {Text(u"Friends")}), Text(u"Friends"));
    EXPECT_EQ(groups.Get("_NewEnum"), Value(Values{Text(u"Friends")}));
    EXPECT_EQ(groups.Self(), std::get<Object>(contact.Get("Groups")))
        << "one object, however often asked for";
    EXPECT_EQ(groups.Self().table->Find("NickName", MemberKind::Get), nullptr);
}

TEST(Tables, RefuseArgumentsWithTheirNumberAndPlace) {
    const Scripted session("cSession"), node("cXML_Node"), socket("cSocketSSL");
    const Value other = Scripted("cVcard").Self();
    struct Case {
        const Scripted& object;
        MemberKind kind;
        const char* member;
        Values arguments;
        std::int32_t error;
        std::size_t position;
    };
    const Case cases[] = {
        {session, MemberKind::Put, "Port", {Text(u"soon")}, ERR_TypeMismatch, 0},
        {session, MemberKind::Put, "Port", {Number(40000)}, ERR_Overflow, 0},
        {session, MemberKind::Put, "UseSSL", {Number(1)}, ERR_TypeMismatch, 0},
        {session, MemberKind::Put, "Status", {Nothing{}}, ERR_TypeMismatch, 0},
        {session, MemberKind::Method, "FindPresence", {Text(u"a"), other, true}, ERR_TypeMismatch, 1},
        {session, MemberKind::Method, "UpdateVcard", {session.Self()}, ERR_TypeMismatch, 0},
        {session, MemberKind::Method, "FindPresence", {Text(u"a")}, ERR_ArgumentMissing, 1},
        {session, MemberKind::Put, "Status", {Missing()}, ERR_ArgumentMissing, 0},
        {node, MemberKind::Method, "GetTag", {Text(u"a"), Missing(), Missing()}, ERR_ArgumentCount, 2},
        {node, MemberKind::Method, "GetTag", {Text(u"a"), other}, ERR_TypeMismatch, 1},
        {socket, MemberKind::Method, "SendData", {true}, ERR_TypeMismatch, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.member);
        try {
            Call(*c.object.Self().table->Find(c.member, c.kind), c.object.Self().instance, c.arguments);
            ADD_FAILURE() << "taken";
        } catch (const ArgumentError& error) {
            EXPECT_EQ(error.Number(), c.error);
            EXPECT_EQ(error.Position(), c.position);
        }
    }
    EXPECT_EQ(ErrorOf([&] { session.Put("ShowType", Number(40000)); }), ERR_Overflow) << "its own";
    EXPECT_EQ(ErrorOf([&] { session.Do("SendGroupChatRequest", {Nothing{}, true}); }), ERR_ObjectNotSet);
}

// Writes down the events with their arguments' alternatives, which must be those that the event names.
class Ear : public Listener {
public:
    bool Wants(const Event& event) const override { return unwanted != event.name; }
    void OnEvent(const Event& event, const Values& arguments) override {
        EXPECT_EQ(&event, &TableOf<cSession>().Events()[heard.size()]) << event.name;
        heard.emplace_back(event.name);
        ASSERT_EQ(arguments.size(), event.parameters.size()) << event.name;
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            EXPECT_EQ(arguments[i].index(), IndexOf(event.parameters[i].kind)) << event.name << " " << i;
        }
    }

    std::vector<std::string> heard;
    std::string unwanted;

private:
    static std::size_t IndexOf(Kind kind) {
        static const std::map<Kind, Value> examples = {
            {Kind::Boolean, false}, {Kind::Int16, std::int16_t()}, {Kind::Int32, std::int32_t()},
            {Kind::Text, String()}, {Kind::Object, Object()},
        };
        return examples.at(kind).index();
    }
};

// Raises the events one after the other, with an empty value for each argument.
template <class... Events>
void RaiseEach(SessionLink& session, Events... events) {
    const auto raise = [&]<class... A>(void (SessionEvents::*event)(A...)) {
        session.Raise(event, std::remove_cvref_t<A>{}...);
    };
    (raise(events), ...);
}

TEST(Tables, PassEachEventOnUnderItsNameUntilNobodyListens) {
    using E = SessionEvents;
    const auto session = cSession::Create();
    const auto ear = std::make_shared<Ear>();
    Connection connection = TableOf<cSession>().Listen(session, ear);
    RaiseEach(*LinkOf(session), &E::OnAuthorized, &E::OnNewUserCreated, &E::OnAgentBegin, &E::OnAgentItem,
              &E::OnAgentEnd, &E::OnError, &E::OnSocketError, &E::OnDisConnected, &E::OnMessage,
              &E::OnMessageEvent, &E::OnRosterBegin, &E::OnRosterItem, &E::OnRosterEnd, &E::OnPresence,
              &E::OnSubscriptionRequest, &E::OnSubscriptionAccept, &E::OnSubscriptionDenied,
              &E::OnIncomingXML, &E::OnOutgoingXML, &E::OnIQ, &E::OnIQError, &E::OnIQResult,
              &E::OnVCardResult, &E::OnGetLastRequest, &E::OnLastSeenResult, &E::OnTimeRequest,
              &E::OnTimeResult, &E::OnVersionRequest, &E::OnVersionResult, &E::OnGroupChat,
              &E::OnGroupChatItem, &E::OnSearchFields, &E::OnSearchResults, &E::OnAccountRemoved,
              &E::OnChangedPassword, &E::OnChatServerBrowseResult, &E::OnChatRoomBrowseResult,
              &E::OnOOBRequest, &E::OnOOBResult, &E::OnGCInvite10, &E::OnWhoisOnlineStart,
              &E::OnWhoisOnlineUser, &E::OnWhoisOnlineEnd, &E::OnGatewayInfo, &E::OnReceiveRosterItem);
    std::vector<std::string> declared;
    for (const Event& event : TableOf<cSession>().Events()) declared.emplace_back(event.name);
    EXPECT_EQ(ear->heard, declared);
    EXPECT_EQ(declared.size(), 45U);

    ear->unwanted = "OnAuthorized";
    RaiseEach(*LinkOf(session), &E::OnAuthorized);
    connection.reset();
    RaiseEach(*LinkOf(session), &E::OnDisConnected);
    EXPECT_EQ(ear->heard.size(), 45U) << "neither the unwanted nor what came after the end";
}

// From the wire to a name and values.
TEST_F(LoggedIn, TellsAListenerOfAMessage) {
    struct Answerer : Listener {
        bool Wants(const Event& event) const override { return event.name == std::string("OnMessage"); }
        void OnEvent(const Event&, const Values& arguments) override {
            const Scripted message(arguments.at(0));
            message.Put("ToJID", message.Get("FromJid"));
            message.Do("SendMessage");
        }
    };
    const Connection connection = TableOf<cSession>().Listen(session, std::make_shared<Answerer>());
    Heard();
    Say("<message from='juliet@s/r' type='chat'><body>x</body></message>");
    EXPECT_EQ(Heard(),
              "<message from=\"juliet@s/r\" type=\"chat\" to=\"juliet@s/r\"><body>x</body></message>");
}

}  // namespace
}  // namespace quorix::scripting
