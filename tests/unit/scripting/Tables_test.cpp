// Classes driven by names, as every script face drives them.
#include "quorix/link/SessionLink.h"
#include "quorix/scripting/Classes.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix::scripting {
namespace {

// An object, and calls of its members by name.
class Scripted {
public:
    explicit Scripted(const char* className) : object_(TableNamed(className).MakeObject()) {}

    Value Do(const char* name, const Values& arguments = {}) const {
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

class Ear : public Listener {
public:
    bool Wants(const Event& event) const override { return event.name != std::string("OnDisConnected"); }
    void OnEvent(const Event& event, const Values& /*arguments*/) override { heard.emplace_back(event.name); }

    std::vector<std::string> heard;
};

TEST(Tables, TellAListenerWhatItWantsUntilItLeaves) {
    const auto session = cSession::Create();
    const auto ear = std::make_shared<Ear>();
    Connection connection = TableOf<cSession>().Listen(session, ear);
    const auto raiseBoth = [&] {
        LinkOf(session)->Raise(&SessionEvents::OnDisConnected);
        LinkOf(session)->Raise(&SessionEvents::OnAuthorized);
    };
    raiseBoth();
    connection.reset();
    raiseBoth();
    EXPECT_EQ(ear->heard, std::vector<std::string>{"OnAuthorized"});
    EXPECT_EQ(TableOf<cSession>().Events().size(), 45U);
}

}  // namespace
}  // namespace quorix::scripting
