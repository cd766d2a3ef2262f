#include "quorix/automation/EventSource.h"

#include <olectl.h>

#include <vector>

namespace quorix::automation {
namespace {

VARIANT Borrow(EventArgument& argument, bool typed) {
    if (!argument.referenced) return argument.value;
    VARIANT reference;
    if (typed) {
        reference.vt = static_cast<VARTYPE>(argument.value.vt | VT_BYREF);
        reference.byref = &argument.value.byref;
    } else {
        reference.vt = VT_BYREF | VT_VARIANT;
        reference.pvarVal = &argument.value;
    }
    return reference;
}

HRESULT CallSink(const EventSource::Sink& sink, DISPID event,
                 std::initializer_list<EventArgument> arguments) {
    // A fresh copy for each sink: what one does to a reference is not seen by the next.
    std::vector<EventArgument> own(arguments);
    std::vector<VARIANT> reversed;
    for (auto at = own.rbegin(); at != own.rend(); ++at) reversed.push_back(Borrow(*at, sink.typed));

    DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    return sink.target->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                               nullptr, nullptr);
}

bool HasDisappeared(HRESULT result) {
    return result == RPC_E_DISCONNECTED || result == CO_E_OBJNOTCONNECTED ||
           result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
}

}  // namespace

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
    if (sinks_.empty()) Detach();
    return S_OK;
}

void EventSource::Close() {
    if (sinks_.empty()) return;
    const std::map<DWORD, Sink> leaving = std::exchange(sinks_, {});
    Detach();
}

void EventSource::Fire(DISPID event, std::initializer_list<EventArgument> arguments) {
    const auto self = shared_from_this();
    const std::map<DWORD, Sink> present = sinks_;
    for (const auto& [cookie, sink] : present) {
        if (sinks_.find(cookie) == sinks_.end()) continue;  // gone since, by an earlier sink's doing
        if (HasDisappeared(CallSink(sink, event, arguments))) Unadvise(cookie);
    }
}

}  // namespace quorix::automation
