// Every member of every class, with every kind of value in every place; and who hears of events.
#include <gtest/gtest.h>

#include <set>

#include "quorix/link/SessionLink.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/ScriptObjects.h"

namespace quorix::scripting {
namespace {

template <class... Alternatives>
bool Is(const Value& value) {
    return (std::holds_alternative<Alternatives>(value) || ...);
}

// Whether a value of that alternative may go there, with what the library thinks of it.
bool Suits(const Value& value, const Parameter& parameter) {
    const Type& type = parameter.type;
    switch (IsMissing(value) ? Kind::Nothing : type.kind) {
        case Kind::Nothing: return parameter.isOptional;
        case Kind::Boolean: return Is<bool>(value);
        case Kind::Int16:
        case Kind::Int32: return Is<std::int16_t, std::int32_t>(value);
        case Kind::Text: return Is<String>(value) || (type.isOptional && Is<Nothing>(value));
        case Kind::Bytes: return Is<ByteArray>(value);
        case Kind::Index: return Is<std::int16_t, std::int32_t, String>(value);
        case Kind::Data: return Is<String, ByteArray>(value);
        case Kind::Object:
            return Is<Nothing>(value) ||
                   (Is<Object>(value) && std::get<Object>(value).table == &type.table());
        default: return false;
    }
}

// The number of the error for a value that does not suit, or is beyond a number's range; 0 for none.
std::int32_t ErrorFor(const Value& value, const Parameter& parameter) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (IsMissing(value) && !parameter.isOptional) return ERR_ArgumentMissing;
    if (!Suits(value, parameter)) return ERR_TypeMismatch;
    return number && parameter.type.kind == Kind::Int16 && *number > INT16_MAX ? ERR_Overflow : 0;
}

// What goes there without a word.
Value Harmless(const Parameter& parameter, const Values& values) {
    for (const Value& value : values) {
        if (!IsMissing(value) && Suits(value, parameter)) return value;
    }
    return {};
}

// 0 when it is taken, else the number of the ArgumentError; other errors are the library's own business.
std::int32_t Refusal(const Member& member, const Object& object, const Values& arguments, std::size_t place) {
    try {
        Call(member, object.instance, arguments);
    } catch (const ArgumentError& error) {
        EXPECT_EQ(error.Position(), place);
        return error.Number();
    } catch (const AutomationError&) {
    } catch (const std::exception& error) {
        ADD_FAILURE() << object.table->Name() << "." << member.name << ": " << error.what();
    }
    return 0;
}

class EveryMember : public ::testing::Test {
protected:
    EveryMember() {
        for (const Object& object : objects) values.emplace_back(object);
    }

    // Objects that were put into one another let go again.
    ~EveryMember() override {
        for (const Object& object : objects) {
            for (const Member& member : object.table->Members()) {
                const bool holds =
                    member.parameters.size() == 1 && member.parameters[0].type.kind == Kind::Object;
                if (holds) Refusal(member, object, {Nothing()}, 0);
            }
        }
    }

    void CallWithEachIn(const Object& object, const Member& member, std::size_t place) {
        Values arguments;
        for (const Parameter& parameter : member.parameters) arguments.push_back(Harmless(parameter, values));
        for (const Value& value : values) {
            arguments[place] = value;
            EXPECT_EQ(Refusal(member, object, arguments, place), ErrorFor(value, member.parameters[place]))
                << object.table->Name() << "." << member.name << " argument " << place << " alternative "
                << value.index();
        }
    }

    testkit::DeterministicEnvironment env;
    std::vector<Object> objects = testkit::OneOfEachClass();
    Values values = testkit::SomeValues();
};

TEST_F(EveryMember, TakesWhatSuitsAndRefusesTheRestWithItsPlace) {
    EXPECT_EQ(objects.size(), Classes().size()) << "a class without an object";
    std::set<std::size_t> kinds;
    for (const Value& value : values) kinds.insert(value.index());
    EXPECT_EQ(kinds.size(), std::variant_size_v<Value::variant>) << "a kind without a value";
    for (const Object& object : objects) {
        for (const Member& member : object.table->Members()) {
            for (std::size_t i = 0; i < member.parameters.size(); ++i) CallWithEachIn(object, member, i);
            if (member.parameters.empty()) Refusal(member, object, {}, 0);
            const Values tooMany(member.parameters.size() + 1, String(u"x"));
            EXPECT_EQ(Refusal(member, object, tooMany, member.parameters.size()), ERR_ArgumentCount);
        }
    }
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
