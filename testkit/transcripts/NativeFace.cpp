#include "testkit/transcripts/NativeFace.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "quorix/base/WireText.h"
#include "quorix/scripting/Classes.h"
#include "testkit/transcripts/Runner.h"

namespace quorix::transcripts {
namespace {

using scripting::ClassTable;
using scripting::MemberKind;

class Ear : public scripting::Listener {
public:
    explicit Ear(EventHandler onEvent) : onEvent_(std::move(onEvent)) {}
    void OnEvent(const scripting::Event& event, const Values& arguments) override {
        onEvent_(Fits(event, arguments) ? event.name : event.name + std::string(" with other arguments"),
                 arguments);
    }

private:
    // Whether the arguments are of the kinds that the event declares.
    static bool Fits(const scripting::Event& event, const Values& arguments) {
        static const std::map<scripting::Kind, Value> examples = {
            {scripting::Kind::Boolean, false},        {scripting::Kind::Int16, std::int16_t()},
            {scripting::Kind::Int32, std::int32_t()}, {scripting::Kind::Text, String()},
            {scripting::Kind::Object, Object()},
        };
        return std::equal(arguments.begin(), arguments.end(), event.parameters.begin(),
                          event.parameters.end(), [](const Value& value, const scripting::Type& type) {
                              return value.index() == examples.at(type.kind).index();
                          });
    }

    EventHandler onEvent_;
};

std::string Bytes(const Value& value) { return Utf8FromText(std::get<String>(value)); }

std::vector<String> TextsOf(const Values& arguments) {
    std::vector<String> texts;
    for (const Value& value : arguments) {
        const auto* text = std::get_if<String>(&value);
        texts.push_back(text != nullptr ? *text : ToString(scripting::Int32Of(value)));
    }
    return texts;
}

std::vector<Address> AddressesOf(const Values& arguments) {
    std::vector<Address> addresses;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string text = Bytes(arguments[i]);
        const auto ip4 = ParseDotted(text);
        addresses.push_back(ip4 ? Address{*ip4}
                                : Address{0, 0, Ip6{0xFD, 1}});  // the only other one is "fd01::"
    }
    return addresses;
}

}  // namespace

void NativeFace::Add(const std::string& name, const std::shared_ptr<cSession>& session) {
    const Value value = scripting::ToValue(session);
    names_[name] = value;
    const Object& object = std::get<Object>(value);
    connections_.push_back(object.table->Listen(object.instance, std::make_shared<Ear>(onEvent_)));
}

std::map<std::string, Value> NativeFace::Start(EventHandler onEvent) {
    onEvent_ = std::move(onEvent);
    names_["port"] = std::int16_t(5222);
    application_ = begin_(*this);
    return std::move(names_);  // a step may let go of a session
}

Value NativeFace::Create(const std::string& className) {
    for (const ClassTable* table : scripting::Classes()) {
        if (className == table->Name()) return table->MakeObject();
    }
    throw std::runtime_error("no class " + className);
}

Value NativeFace::Call(const Object& object, const std::string& member, const Values& arguments) {
    for (MemberKind kind : {MemberKind::Method, MemberKind::Get}) {
        const scripting::Member* found = object.table->Find(member, kind);
        if (found != nullptr) return scripting::Call(*found, object.instance, arguments);
    }
    throw std::runtime_error(std::string(object.table->Name()) + " has no " + member);
}

void NativeFace::Put(const Object& object, const std::string& member, const Value& value) {
    const scripting::Member* found = object.table->Find(member, MemberKind::Put);
    if (found == nullptr) throw std::runtime_error("cannot set " + member);
    scripting::Call(*found, object.instance, {value});
}

std::string NativeFace::Heard() {
    std::string heard;
    for (std::size_t i = deaf_; i < env_.PeerCount(); ++i) heard += env_.Peer(i).TakeHeard();
    return heard;
}

bool NativeFace::Until(const std::function<bool()>& done) {
    if (done()) return true;
    env_.DoEvents();
    return done();
}

Value NativeFace::Control(const std::string& what, const Values& arguments) {
    if (const auto action = actions_.find(what); action != actions_.end())
        return action->second(TextsOf(arguments));
    const auto text = [&](std::size_t i) { return Bytes(arguments.at(i)); };
    const auto number = [&](std::size_t i) { return scripting::Int32Of(arguments.at(i)); };
    const std::map<std::string, std::function<Value()>> controls = {
        {"server.Close", [&] { return deaf_ = env_.PeerCount(), env_.Peer().Close(), Value(); }},
        {"network.Refuse", [&] { return env_.RefuseConnections(number(0)), Value(); }},
        {"network.RefuseAt",
         [&] {
             return env_.RefuseAddress(AddressesOf({{}, arguments.at(0)}).at(0), number(1)), Value();
         }},
        {"network.Hold", [&] { return env_.HoldConnections(number(0) != 0), Value(); }},
        {"network.HoldLookUps", [&] { return env_.HoldLookUps(number(0) != 0), Value(); }},
        {"network.Host", [&] { return env_.AddHost(text(0), *ParseDotted(text(1))), Value(); }},
        {"network.Forget", [&] { return env_.RemoveHost(text(0)), Value(); }},
        {"network.Addresses", [&] { return env_.ScriptAddresses(text(0), AddressesOf(arguments)), Value(); }},
        {"network.Service",
         [&] {
             return env_.ScriptService(text(0), {{text(1), static_cast<std::uint16_t>(number(2))},
                                                 {text(3), static_cast<std::uint16_t>(number(4))}}),
                    Value();
         }},
        {"network.ReadsAtMost",
         [&] { return env_.LimitReads(static_cast<std::size_t>(number(0))), Value(); }},
        {"network.Random", [&] { return env_.ScriptRandom(static_cast<std::uint32_t>(number(0))), Value(); }},
        {"network.Connections", [&] { return Value(static_cast<std::int32_t>(env_.PeerCount())); }},
        {"network.IsIdle",
         [&] { return Value(env_.OpenSockets() + env_.RunningTimers() + env_.RunningLookUps() == 0); }},
        {"network.Destination",
         [&] {
             const Address address = env_.Peer().Destination();
             return Value(Concat({AddressText(address), u" ", ToString(address.port)}));
         }},
    };
    const auto control = controls.find(what);
    if (control == controls.end()) throw std::runtime_error("nothing is called " + what);
    return control->second();
}

std::string Play(const std::filesystem::path& file, const Begin& begin) {
    std::string failures;
    for (const Scenario& scenario : ReadTranscript(file)) {
        NativeFace face(begin);
        const std::string failure = Runner(face, scenario).Play();
        if (!failure.empty()) failures += scenario.title + ": " + failure + "\n";
    }
    return failures;
}

}  // namespace quorix::transcripts
