// The transcripts through automation, by name: a session of the component, its events through its connection
// point, and a server on a socket of this process.
#include <gtest/gtest.h>

#include <algorithm>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mSocketSSL.h"
#include "testkit/transcripts/Runner.h"
#include "tests/windows/support/Component.h"
#include "tests/windows/support/Functions.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

using namespace quorix;
using namespace quorix::transcripts;

// Hears on one port, and speaks to whoever came last.
class Server : public SocketEvents, public std::enable_shared_from_this<Server> {
public:
    void Start() {
        listener_->Advise(weak_from_this());
        for (port = static_cast<std::int16_t>(20000 + GetCurrentProcessId() % 10000);
             listener_->State() != sockListening; ++port) {
            listener_->LocalPort(port);
            listener_->Listen();
        }
        --port;
    }
    void OnConnectionRequest() override {
        connection = std::make_shared<cSocketSSL>();
        connection->Advise(weak_from_this());
        connection->Accept(AcceptConnection(listener_->SocketHandle()));
    }
    void OnDataArrival(std::string_view bytes, StringView /*remoteHost*/) override { heard += bytes; }

    std::int16_t port = 0;
    std::shared_ptr<cSocketSSL> connection;
    std::string heard;

private:
    std::shared_ptr<cSocketSSL> listener_ = std::make_shared<cSocketSSL>();
};

Value FromVariant(const VARIANT& made) {
    const Variant value(made);
    switch (value.vt) {
        case VT_BSTR: return automation::FromBstr(value.bstrVal);
        case VT_BOOL: return value.boolVal != VARIANT_FALSE;
        case VT_I2: return static_cast<std::int32_t>(value.iVal);
        case VT_I4: return static_cast<std::int32_t>(value.lVal);
        case VT_DISPATCH: {
            if (value.pdispVal == nullptr) return scripting::Nothing{};
            return Object{std::make_shared<Late>(value), nullptr, value.pdispVal};
        }
        default: return scripting::Nothing{};
    }
}

const Late& LateOf(const Object& object) { return *static_cast<const Late*>(object.instance.get()); }

Variant ToVariant(const Value& value) {
    if (const auto* text = std::get_if<String>(&value)) return automation::StringVariant(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return Of(*flag);
    if (const auto* number = std::get_if<std::int16_t>(&value)) return Of(int{*number});
    if (const auto* number = std::get_if<std::int32_t>(&value)) return Of(int{*number});
    const auto* object = std::get_if<Object>(&value);
    return object != nullptr ? Of(LateOf(*object).Raw()) : windowstest::Nothing();
}

void Require(const Answer& answer, const std::string& member) {
    if (SUCCEEDED(answer.code)) return;
    if (answer.code == DISP_E_EXCEPTION) throw AutomationError(answer.error & 0xFFFF);
    if (answer.code == DISP_E_OVERFLOW) throw AutomationError(ERR_Overflow);
    throw std::runtime_error(member + " answers " + std::to_string(answer.code));
}

std::wstring Widened(const std::string& name) { return {name.begin(), name.end()}; }

// The type of a VARIANT that carries a value declared so. Interfaces and enumerations are named types.
VARTYPE CarriedAs(ITypeInfo& info, const TYPEDESC& declared) {
    if (declared.vt == VT_PTR) {
        const VARTYPE to = CarriedAs(info, *declared.lptdesc);
        return to == VT_DISPATCH ? to : static_cast<VARTYPE>(to | VT_BYREF);
    }
    if (declared.vt != VT_USERDEFINED) return declared.vt;
    ComPtr<ITypeInfo> named;
    TYPEATTR* type = nullptr;
    info.GetRefTypeInfo(declared.hreftype, &named);
    named->GetTypeAttr(&type);
    const VARTYPE carried = type->typekind == TKIND_DISPATCH ? VT_DISPATCH : VT_I4;
    named->ReleaseTypeAttr(type);
    return carried;
}

struct DeclaredEvent {
    std::string name;
    std::vector<VARTYPE> arguments;
};

// The events that the type library declares, by their numbers.
std::map<DISPID, DeclaredEvent> DeclaredEvents(const Late& session) {
    std::map<DISPID, DeclaredEvent> all;
    const ComPtr<ITypeInfo> info = DefaultEventsInfoOf(session);
    ForEachFunction(*info.Get(), [&](const FUNCDESC& function) {
        DeclaredEvent& event = all[function.memid];
        event.name = NameOf(*info.Get(), function.memid);
        for (SHORT p = 0; p < function.cParams; ++p)
            event.arguments.push_back(CarriedAs(*info.Get(), function.lprgelemdescParam[p].tdesc));
    });
    return all;
}

// There is no other time than the clock's here, of which there is little, and no other network than the
// system's.
bool IsForAutomation(const Scenario& scenario) {
    return !scenario.Has("native") &&
           std::none_of(scenario.steps.begin(), scenario.steps.end(), [](const Step& step) {
               const bool takesLong = step.text.starts_with("after ") && std::stod(step.text.substr(6)) > 1;
               return takesLong || step.text.starts_with("network");
           });
}

class ComFace : public Face {
public:
    ComFace() { server_->Start(); }

    std::map<std::string, Value> Start(EventHandler onEvent) override {
        const Value session = Create("cSession");
        Listen(std::get<Object>(session), onEvent);
        return {{"session", session}, {"port", server_->port}};
    }

    Value Create(const std::string& className) override {
        const Late made = Late::Create(L"Quorix." + Widened(className));
        return Object{std::make_shared<Late>(made), nullptr, made.Raw()};
    }
    Value Call(const Object& object, const std::string& member, const Values& arguments) override {
        std::vector<Variant> values;
        for (const Value& argument : arguments) values.push_back(ToVariant(argument));
        const Answer answer = LateOf(object).Try(DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                                 Widened(member).c_str(), std::move(values));
        Require(answer, member);
        return FromVariant(answer.value);
    }
    void Put(const Object& object, const std::string& member, const Value& value) override {
        Require(LateOf(object).Try(DISPATCH_PROPERTYPUT, Widened(member).c_str(), {ToVariant(value)}),
                member);
    }

    void Say(const std::string& bytes) override { server_->connection->SendData(WireFromBytes(bytes)); }
    std::string Heard() override { return std::exchange(server_->heard, {}); }
    Value Control(const std::string& what, const Values& /*arguments*/) override {
        if (what != "server.Close") throw std::runtime_error("nothing is called " + what);
        server_->connection->Disconnect();
        return {};
    }
    void Wait(double seconds) override { PumpFor(static_cast<ULONGLONG>(seconds * 1000)); }
    void Settle() override {}
    bool Until(const std::function<bool()>& done) override { return PumpUntil(done); }

private:
    void Listen(const Object& session, const EventHandler& onEvent) {
        // A compiled one, which gets each argument as it is declared.
        sink_ = automation::Adopt(new Sink(DefaultEventsOf(LateOf(session))));
        DWORD cookie = 0;  // the sink leaves with the session, and does not keep it
        if (FAILED(ConnectionPointOf(LateOf(session))->Advise(sink_.Get(), &cookie))) {
            throw std::runtime_error("cannot connect a sink");
        }
        for (const auto& [id, event] : DeclaredEvents(LateOf(session))) {
            sink_->at[id] = [this, id = id, event = event, onEvent](DISPPARAMS&) {
                Values arguments;
                for (const Variant& value : sink_->values[id]) arguments.push_back(FromVariant(value));
                const bool asDeclared = sink_->types[id] == event.arguments;
                onEvent(asDeclared ? event.name : event.name + " with other arguments", arguments);
                return S_OK;
            };
        }
    }

    std::shared_ptr<Server> server_ = std::make_shared<Server>();
    ComPtr<Sink> sink_;
};

class Transcript : public ::testing::TestWithParam<std::filesystem::path> {};

// Up to the first that fails: each of them may take long to do so.
TEST_P(Transcript, HappensAsItIsWritten) {
    for (const Scenario& scenario : ReadTranscript(GetParam())) {
        if (!IsForAutomation(scenario)) continue;
        {
            ComFace face;
            ASSERT_EQ(Runner(face, scenario).Play(), "") << scenario.title;
        }
        ASSERT_TRUE(Component::IsUnused()) << scenario.title << " has left an object behind";
    }
}

INSTANTIATE_TEST_SUITE_P(Automation, Transcript, ::testing::ValuesIn(TranscriptsIn(QUORIX_TRANSCRIPTS)),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace windowstest
