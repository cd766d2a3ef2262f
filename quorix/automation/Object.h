// The wrapper that stands for one C++ object in the automation world.
//
// An object has one wrapper at a time, however often it is handed out, so that clients can compare. Wrapper
// and object belong to the thread that handed them out; calls from another answer RPC_E_WRONG_THREAD.
// No exception leaves: an AutomationError becomes 0x800A0000 plus its number, with its text.
#pragma once

#include <ocidl.h>

#include "quorix/automation/Apartment.h"
#include "quorix/automation/EventSource.h"
#include "quorix/automation/TypeLibrary.h"
#include "quorix/automation/Unknown.h"

namespace quorix::automation {

class Object;

// How a wrapper knows another one among all objects that clients pass.
MIDL_INTERFACE("3c1a0c52-6d0e-4f6c-9a5e-0d7b6f1f5a41")
IWrapper : public IUnknown { STDMETHOD_(Object*, Self)() = 0; };

}  // namespace quorix::automation

__CRT_UUID_DECL(quorix::automation::IWrapper, 0x3c1a0c52, 0x6d0e, 0x4f6c, 0x9a, 0x5e, 0x0d, 0x7b, 0x6f, 0x1f,
                0x5a, 0x41)

namespace quorix::automation {

class Object
    : public Unknown<IDispatch, IProvideClassInfo2, ISupportErrorInfo, IConnectionPointContainer, IWrapper> {
public:
    Object(scripting::Object object, const BoundClass& bound);
    ~Object() override;

    scripting::Object Wrapped() const { return {body_->instance, &bound_.Table(), key_.first}; }
    const BoundClass& Bound() const { return bound_; }
    const std::shared_ptr<EventSource>& Events();
    bool OnItsThread() const { return apartment_->IsCurrent(); }

    // One more reference, unless the wrapper is already ending.
    bool KeepAlive() { return AddRefIfAlive(); }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                               DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;

    STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
    STDMETHODIMP GetGUID(DWORD kind, GUID* id) override;

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override;

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID id, IConnectionPoint** point) override;

    STDMETHODIMP_(Object*) Self() override { return this; }

protected:
    void* Interface(REFIID id) override;

private:
    // What ends together, on the thread it belongs to.
    struct Body {
        scripting::Instance instance;
        std::shared_ptr<EventSource> events;
        ~Body() {
            if (events) events->Close();
        }
    };

    const BoundClass& bound_;
    const Apartment::Key key_;
    std::shared_ptr<Apartment> apartment_;
    std::shared_ptr<Body> body_;
};

}  // namespace quorix::automation
