#include "tests/windows/support/Sink.h"

#include <olectl.h>

#include <stdexcept>

namespace windowstest {

HRESULT Sink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*, UINT*) {
    thread = GetCurrentThreadId();
    events.push_back(id);
    arguments[id].clear();
    types[id].clear();
    values[id].clear();
    for (UINT i = parameters->cArgs; i-- > 0;) {
        arguments[id].push_back(Words(parameters->rgvarg[i]));
        types[id].push_back(parameters->rgvarg[i].vt);
        values[id].emplace_back(parameters->rgvarg[i]);
    }
    const auto action = at.find(id);
    return action != at.end() ? action->second(*parameters) : S_OK;
}

GUID DefaultEventsOf(const Late& source) {
    ComPtr<IProvideClassInfo2> info;
    GUID id = GUID_NULL;
    if (FAILED(source->QueryInterface(IID_PPV_ARGS(&info))) ||
        FAILED(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id))) {
        throw std::runtime_error("no default events");
    }
    return id;
}

ComPtr<ITypeInfo> DefaultEventsInfoOf(const Late& source) {
    ComPtr<IProvideClassInfo2> provider;
    ComPtr<ITypeInfo> coclass, events;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    if (FAILED(source->QueryInterface(IID_PPV_ARGS(&provider))) || FAILED(provider->GetClassInfo(&coclass)) ||
        FAILED(coclass->GetContainingTypeLib(&library, &index)) ||
        FAILED(library->GetTypeInfoOfGuid(DefaultEventsOf(source), &events))) {
        throw std::runtime_error("the events are not described");
    }
    return events;
}

ComPtr<IConnectionPoint> ConnectionPointOf(const Late& source) {
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    if (FAILED(source->QueryInterface(IID_PPV_ARGS(&container))) ||
        FAILED(container->FindConnectionPoint(DefaultEventsOf(source), &point))) {
        throw std::runtime_error("no connection point");
    }
    return point;
}

Connection::Connection(const Late& source, const GUID& eventsId) : point_(ConnectionPointOf(source)) {
    sink_ = quorix::automation::Adopt(new Sink(eventsId));
    if (FAILED(point_->Advise(sink_.Get(), &cookie_))) throw std::runtime_error("cannot connect a sink");
}

HRESULT Connection::Cut() {
    if (cookie_ == 0) return S_FALSE;
    const HRESULT result = point_->Unadvise(cookie_);
    cookie_ = 0;
    point_.Reset();
    return result;
}

}  // namespace windowstest
