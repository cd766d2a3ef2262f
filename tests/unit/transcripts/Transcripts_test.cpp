// Every transcript, on the tables that all faces share and on the deterministic environment.
#include <gmock/gmock.h>

#include "quorix/base/WireText.h"
#include "quorix/scripting/Classes.h"
#include "testkit/DeterministicEnvironment.h"
#include "tests/transcripts/runner/Runner.h"

namespace quorix::transcripts {
namespace {

using scripting::ClassTable;
using scripting::MemberKind;

class Ear : public scripting::Listener {
public:
    explicit Ear(EventHandler onEvent) : onEvent_(std::move(onEvent)) {}
    void OnEvent(const scripting::Event& event, const Values& arguments) override {
        onEvent_(event.name, arguments);
    }

private:
    EventHandler onEvent_;
};

class NativeFace : public Face {
public:
    bool Plays(const Scenario& /*scenario*/) const override { return true; }

    Value Create(const std::string& className) override {
        for (const ClassTable* table : scripting::Classes()) {
            if (className == table->Name()) return table->MakeObject();
        }
        throw std::runtime_error("no class " + className);
    }
    Value Call(const Object& object, const std::string& member, const Values& arguments) override {
        for (MemberKind kind : {MemberKind::Method, MemberKind::Get}) {
            const scripting::Member* found = object.table->Find(member, kind);
            if (found != nullptr) return scripting::Call(*found, object.instance, arguments);
        }
        throw std::runtime_error(std::string(object.table->Name()) + " has no " + member);
    }
    void Put(const Object& object, const std::string& member, const Value& value) override {
        const scripting::Member* found = object.table->Find(member, MemberKind::Put);
        if (found == nullptr) throw std::runtime_error("cannot set " + member);
        scripting::Call(*found, object.instance, {value});
    }
    void Listen(const Object& session, EventHandler onEvent) override {
        connection_ = session.table->Listen(session.instance, std::make_shared<Ear>(std::move(onEvent)));
    }

    void Say(const std::string& bytes) override { env_.Peer().Say(bytes); }
    std::string Heard() override {
        std::string heard;
        for (std::size_t i = deaf_; i < env_.PeerCount(); ++i) heard += env_.Peer(i).TakeHeard();
        return heard;
    }
    void Wait(double seconds) override { env_.Advance(std::llround(seconds * 1000)); }
    void Settle() override { env_.DoEvents(); }
    bool Until(const std::function<bool()>& done) override {
        if (done()) return true;
        env_.DoEvents();
        return done();
    }
    std::int16_t Port() const override { return 5222; }
    Value Control(const std::string& what, const Values& arguments) override;

private:
    testkit::DeterministicEnvironment env_;
    scripting::Connection connection_;
    std::size_t deaf_ = 0;  // so many connections have been closed by the server
};

std::string Bytes(const Value& value) { return Utf8FromText(std::get<String>(value)); }

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

Value NativeFace::Control(const std::string& what, const Values& arguments) {
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
    return controls.at(what)();
}

class Natively : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(Natively, HappensAsItIsWritten) {
    for (const Scenario& scenario : ReadTranscript(GetParam())) {
        NativeFace face;
        EXPECT_EQ(Runner(face, scenario).Play(), "") << scenario.title;
    }
}

struct Fault {
    std::vector<std::string> steps;  // behind the connection
    std::string failure;             // in what the runner says of the last of them
};

TEST(Transcripts, AreNotPlayedThroughWhereSomethingElseHappens) {
    const std::string header =
        "client: <stream:stream to='s' xmlns='jabber:client' "
        "xmlns:stream='http://etherx.jabber.org/streams'>";
    const Fault faults[] = {
        {{}, "the client has said besides: <stream"},
        {{"client: <stream"}, "the client has said <stream:stream to"},
        {{"server: <stream:stream>"}, "the client has said besides: <stream"},
        {{header, "client: <a"}, "the client has said "},
        {{header, "OnAuthorized"}, "has not come: OnAuthorized"},
        {{header, "session.Disconnect"}, "OnDisConnected has come, not "},
        {{header, "server: <stream:stream>", "OnIncomingXML(\"no\")"}, "$1 is \"<stream:stream>\""},
        {{header, "session.Active = True"}, "session.Active is False"},
        {{header, "session .Active=False .Priority=4"}, "session.Priority is 5"},
        {{header, "session.Roster.Item(1) fails with 5"}, "has failed with 9"},
        {{header, "session.Roster.Count fails with 5"}, "has not failed"},
        {{header, "session.Nothing"}, "cSession has no Nothing"},
    };
    for (const Fault& fault : faults) {
        Scenario scenario;
        scenario.steps = {{"", 2, "session .ServerAddress:=\"s\" .Port:=port .Connect(False)"}};
        for (const std::string& step : fault.steps) scenario.steps.push_back({"", 2, step});
        NativeFace face;
        EXPECT_THAT(Runner(face, scenario).Play(), ::testing::HasSubstr(": " + fault.failure));
    }
}

INSTANTIATE_TEST_SUITE_P(Transcript, Natively, ::testing::ValuesIn(TranscriptFiles()),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace quorix::transcripts
