#include "quorix/automation/EventSource.h"

#include <olectl.h>

#include <vector>

namespace quorix::automation {
namespace {

// A referenced argument lets the sink read a number or text that it cannot change here.
VARIANT Borrow(Variant& argument, bool referenced, bool typed) {
    if (!referenced) return argument;
    VARIANT reference;
    if (typed) {
        reference.vt = static_cast<VARTYPE>(argument.vt | VT_BYREF);
        reference.byref = &argument.byref;
    } else {
        reference.vt = VT_BYREF | VT_VARIANT;
        reference.pvarVal = &argument;
    }
    return reference;
}

HRESULT CallSink(const EventSource::Sink& sink, const DeclaredEvent& event, std::vector<Variant> arguments) {
    std::vector<VARIANT> reversed;
    for (std::size_t i = arguments.size(); i-- > 0;) {
        reversed.push_back(Borrow(arguments[i], event.referenced[i], sink.typed));
    }
    DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    return sink.target->Invoke(event.id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                               nullptr, nullptr);
}

bool HasDisappeared(HRESULT result) {
    return result == RPC_E_DISCONNECTED || result == CO_E_OBJNOTCONNECTED ||
           result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
}

class Ear : public scripting::Listener {
public:
    explicit Ear(std::weak_ptr<EventSource> source) : source_(std::move(source)) {}

    void OnEvent(const scripting::Event& event, const scripting::Values& arguments) override {
        if (const auto source = source_.lock()) source->Fire(event, arguments);
    }

private:
    std::weak_ptr<EventSource> source_;
};

}  // namespace

bool EventSource::Attach() {
    const scripting::Instance instance = instance_.lock();
    if (!instance) return true;
    connection_ = bound_.Table().Listen(instance, std::make_shared<Ear>(weak_from_this()));
    return connection_ != nullptr;
}

HRESULT EventSource::Advise(IUnknown* sink, REFGUID eventsId, DWORD* cookie) {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    Sink added = {nullptr, true};
    if (FAILED(sink->QueryInterface(eventsId, reinterpret_cast<void**>(added.target.GetAddressOf())))) {
        added.typed = false;
        if (FAILED(sink->QueryInterface(IID_PPV_ARGS(&added.target)))) return CONNECT_E_CANNOTCONNECT;
    }
    if (sinks_.empty() && !Attach()) return CONNECT_E_CANNOTCONNECT;
    *cookie = ++lastCookie_;
    sinks_.emplace(*cookie, added);
    return S_OK;
}

HRESULT EventSource::Unadvise(DWORD cookie) {
    auto found = sinks_.find(cookie);
    if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
    const Sink leaving = found->second;  // its last release may come back here
    sinks_.erase(found);
    if (sinks_.empty()) connection_.reset();
    return S_OK;
}

void EventSource::Close() {
    if (sinks_.empty()) return;
    const std::map<DWORD, Sink> leaving = std::exchange(sinks_, {});
    connection_.reset();
}

void EventSource::Fire(const scripting::Event& event, const scripting::Values& arguments) {
    const auto self = shared_from_this();
    const DeclaredEvent& declared = bound_.Find(event);
    std::vector<Variant> made;
    for (const scripting::Value& argument : arguments) made.push_back(VariantOf(argument));
    const std::map<DWORD, Sink> present = sinks_;
    for (const auto& [cookie, sink] : present) {
        if (sinks_.find(cookie) == sinks_.end()) continue;  // gone since, by an earlier sink's doing
        // Each has a copy: what one does to a reference is not seen by the next.
        if (HasDisappeared(CallSink(sink, declared, made))) Unadvise(cookie);
    }
}

}  // namespace quorix::automation
