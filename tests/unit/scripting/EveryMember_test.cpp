// Every member of every class, with every kind of value in every place.
#include <gtest/gtest.h>

#include "testkit/DeterministicEnvironment.h"
#include "testkit/ScriptObjects.h"

namespace quorix::scripting {
namespace {

// Whether a value of that alternative may go there, with what the library thinks of it.
bool Suits(const Value& value, const Parameter& parameter) {
    if (IsMissing(value)) return parameter.isOptional;
    const bool isNumber =
        std::holds_alternative<std::int16_t>(value) || std::holds_alternative<std::int32_t>(value);
    switch (parameter.type.kind) {
        case Kind::Boolean: return std::holds_alternative<bool>(value);
        case Kind::Int16:
        case Kind::Int32: return isNumber;
        case Kind::Text:
            return std::holds_alternative<String>(value) ||
                   (parameter.type.isOptional && std::holds_alternative<Nothing>(value));
        case Kind::Bytes: return std::holds_alternative<ByteArray>(value);
        case Kind::Index: return isNumber || std::holds_alternative<String>(value);
        case Kind::Data:
            return std::holds_alternative<String>(value) || std::holds_alternative<ByteArray>(value);
        case Kind::Object: {
            const auto* object = std::get_if<Object>(&value);
            return std::holds_alternative<Nothing>(value) ||
                   (object && object->table == &parameter.type.table());
        }
        default: return false;
    }
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
            const std::int32_t number = Refusal(member, object, arguments, place);
            const bool suits = Suits(value, member.parameters[place]);
            EXPECT_TRUE(suits ? number == 0 || number == ERR_Overflow : number != 0)
                << object.table->Name() << "." << member.name << " argument " << place << " alternative "
                << value.index() << " error " << number;
            ++calls;
        }
    }

    testkit::DeterministicEnvironment env;
    std::vector<Object> objects = testkit::OneOfEachClass();
    Values values = testkit::SomeValues();
    std::size_t calls = 0;
};

TEST_F(EveryMember, TakesWhatSuitsAndRefusesTheRestWithItsPlace) {
    EXPECT_EQ(objects.size(), Classes().size()) << "a class without an object";
    for (const Object& object : objects) {
        for (const Member& member : object.table->Members()) {
            for (std::size_t i = 0; i < member.parameters.size(); ++i) CallWithEachIn(object, member, i);
            if (member.parameters.empty()) Refusal(member, object, {}, 0);
            const Values tooMany(member.parameters.size() + 1, String(u"x"));
            EXPECT_EQ(Refusal(member, object, tooMany, member.parameters.size()), ERR_ArgumentCount);
        }
    }
    RecordProperty("calls", static_cast<int>(calls));
}

}  // namespace
}  // namespace quorix::scripting
