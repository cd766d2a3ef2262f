// Whatever a script may call: any member of any object with any values, in any order, while a server answers
// and events come.
#include <fuzzer/FuzzedDataProvider.h>

#include <string_view>

#include "quorix/base/WireText.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/ScriptObjects.h"

namespace quorix {
namespace {

using namespace scripting;

constexpr std::size_t kMostObjects = 200;

class Script : public Listener, public std::enable_shared_from_this<Script> {
public:
    Script(const std::uint8_t* data, std::size_t size) : input_(data, size) {}

    void Run() {
        for (const Object& object : objects_) Listen(object);
        while (input_.remaining_bytes() > 0) Step();
        connections_.clear();
        objects_.clear();
        env_.DoEvents();
    }

    // Each event's objects can be called later, and one call is made inside it.
    void OnEvent(const Event&, const Values& arguments) override {
        for (const Value& argument : arguments) Keep(argument);
        if (depth_ == kDeepest) return;
        ++depth_;
        CallOne();
        --depth_;
    }

private:
    static constexpr int kDeepest = 4;

    void Listen(const Object& object) {
        if (Connection made = object.table->Listen(object.instance, shared_from_this()))
            connections_.push_back(made);
    }

    void Step() {
        switch (input_.ConsumeIntegralInRange(0, 5)) {
            case 0: return env_.DoEvents();
            case 1: return env_.Advance(input_.ConsumeIntegralInRange(0, 100000));
            case 2: return Say(input_.ConsumeRandomLengthString());
            default: return CallOne();
        }
    }

    void Say(std::string_view bytes) {
        if (env_.PeerCount() > 0) env_.Peer().Say(bytes);
        env_.DoEvents();
    }

    void CallOne() {
        if (objects_.empty()) return;
        const Object object = objects_[Index(objects_.size())];
        const auto& members = object.table->Members();
        const Member& member = members[Index(members.size())];
        Values arguments(input_.ConsumeBool() ? member.parameters.size() : Index(5));
        // No file gets a name that nobody chose.
        const bool isFile = std::string_view(member.name).find("File") != std::string_view::npos;
        for (Value& argument : arguments) argument = isFile ? some_[Index(some_.size())] : AnyValue();
        try {
            Keep(Call(member, object.instance, std::move(arguments)));
        } catch (const AutomationError&) {
        }
    }

    void Keep(const Value& value) {
        const auto* object = std::get_if<Object>(&value);
        if (object != nullptr && object->instance && objects_.size() < kMostObjects)
            objects_.push_back(*object);
        const auto* elements = std::get_if<Values>(&value);
        if (elements == nullptr) return;
        for (const Value& element : *elements) Keep(element);
    }

    Value AnyValue() {
        switch (input_.ConsumeIntegralInRange(0, 4)) {
            case 0: return input_.ConsumeIntegral<std::int32_t>();
            case 1: return TextFromUtf8(input_.ConsumeRandomLengthString());
            case 2:
                if (!objects_.empty()) return objects_[Index(objects_.size())];
                return {};
            default: return some_[Index(some_.size())];
        }
    }

    std::size_t Index(std::size_t size) { return input_.ConsumeIntegralInRange<std::size_t>(0, size - 1); }

    FuzzedDataProvider input_;
    testkit::DeterministicEnvironment env_;
    std::vector<Object> objects_ = testkit::OneOfEachClass();
    const Values some_ = testkit::SomeValues();
    std::vector<Connection> connections_;
    int depth_ = 0;
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::make_shared<quorix::Script>(data, size)->Run();
    return 0;
}
