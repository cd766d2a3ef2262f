// An event sink that writes down what it is told, and its connection.
#pragma once

#include <ocidl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/windows/support/Late.h"

namespace windowstest {

// An object that others call and that describes nothing.
class Called : public quorix::automation::Unknown<IDispatch> {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
};

class Sink : public Called {
public:
    // Knows IDispatch only, as a script's sink; or, with `eventsId`, the event interface itself.
    explicit Sink(const GUID& eventsId = GUID_NULL) : eventsId_(eventsId) {}

    // The events so far: their numbers, and for each the last arguments, in words too, and their types.
    std::vector<DISPID> events;
    std::map<DISPID, std::vector<std::string>> arguments;
    std::map<DISPID, std::vector<VARTYPE>> types;
    std::map<DISPID, std::vector<Variant>> values;

    // Done at that event, with what the source passed; its result is the sink's answer.
    std::map<DISPID, std::function<HRESULT(DISPPARAMS&)>> at;
    DWORD thread = 0;

    bool Saw(DISPID event) const { return arguments.find(event) != arguments.end(); }

    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override;

protected:
    void* Interface(REFIID id) override {
        return !IsEqualIID(eventsId_, GUID_NULL) && IsEqualIID(id, eventsId_) ? static_cast<IDispatch*>(this)
                                                                              : Called::Interface(id);
    }

private:
    GUID eventsId_;
};

// A sink connected to the default events of `source` while in scope.
class Connection {
public:
    explicit Connection(const Late& source, const GUID& eventsId = GUID_NULL);
    ~Connection() { Cut(); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    Sink* operator->() const { return sink_.Get(); }
    HRESULT Cut();

private:
    ComPtr<Sink> sink_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

// The events that the class of `source` declares as its default: their id, description and connection point.
GUID DefaultEventsOf(const Late& source);
ComPtr<ITypeInfo> DefaultEventsInfoOf(const Late& source);
ComPtr<IConnectionPoint> ConnectionPointOf(const Late& source);

}  // namespace windowstest
