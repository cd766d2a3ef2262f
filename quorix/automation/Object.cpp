#include "quorix/automation/Object.h"

#include <olectl.h>

#include "quorix/automation/Invocation.h"

namespace quorix::automation {

std::atomic<long>& LoadCount() {
    static std::atomic<long> count{0};
    return count;
}

IDispatch* Wrap(scripting::Object object) {
    const BoundClass& bound = Bind(*object.table);
    return Apartment::Current()->FindOrMake({object.identity, object.table},
                                            [&] { return new Object(std::move(object), bound); });
}

scripting::Object Unwrap(const VARIANT& value, const ClassTable& table) {
    const scripting::Object none = {nullptr, &table, nullptr};
    const Variant direct(value);
    if (direct.vt == VT_EMPTY || direct.vt == VT_NULL) return none;
    if (direct.vt != VT_DISPATCH && direct.vt != VT_UNKNOWN) throw BadArgument{DISP_E_TYPEMISMATCH};
    if (direct.punkVal == nullptr) return none;
    ComPtr<IWrapper> wrapper;
    if (FAILED(direct.punkVal->QueryInterface(IID_PPV_ARGS(&wrapper))))
        throw BadArgument{DISP_E_TYPEMISMATCH};
    const Object& object = *wrapper->Self();
    if (&object.Bound().Table() != &table) throw BadArgument{DISP_E_TYPEMISMATCH};
    if (!object.OnItsThread()) throw BadArgument{RPC_E_WRONG_THREAD};
    return object.Wrapped();
}

Object::Object(scripting::Object object, const BoundClass& bound)
    : bound_(bound),
      key_(object.identity, object.table),
      apartment_(Apartment::Current()),
      body_(std::make_shared<Body>(Body{std::move(object.instance), nullptr})) {}

Object::~Object() {
    apartment_->Forget(key_, this);
    if (!OnItsThread()) apartment_->Bury(std::move(body_));
}

const std::shared_ptr<EventSource>& Object::Events() {
    if (!body_->events && bound_.RaisesEvents()) {
        body_->events = std::make_shared<EventSource>(bound_, body_->instance);
    }
    return body_->events;
}

void* Object::Interface(REFIID id) {
    const Declaration& declared = bound_.Declared();
    if (IsEqualIID(id, declared.interfaceId)) return static_cast<IDispatch*>(this);
    if (IsEqualIID(id, IID_IConnectionPointContainer) && !bound_.RaisesEvents()) return nullptr;
    return Unknown::Interface(id);
}

HRESULT Object::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT Object::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return bound_.Declared().interfaceInfo.CopyTo(info);
}

HRESULT Object::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    return bound_.Declared().interfaceInfo->GetIDsOfNames(names, count, ids);
}

HRESULT Object::Invoke(DISPID id, REFIID reserved, LCID, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
                       EXCEPINFO* exception, UINT* badArgument) {
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_INVALIDARG;
    if (!OnItsThread()) return RPC_E_WRONG_THREAD;
    apartment_->EmptyGrave();

    const ComPtr<IDispatch> self(this);  // the member may raise events, and one of them may let us go
    return InvokeMember({bound_, body_->instance, id, kinds, *parameters}, result, exception, badArgument);
}

HRESULT Object::GetClassInfo(ITypeInfo** info) {
    if (info == nullptr) return E_POINTER;
    return bound_.Declared().classInfo.CopyTo(info);
}

HRESULT Object::GetGUID(DWORD kind, GUID* id) {
    if (id == nullptr) return E_POINTER;
    *id = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
    if (!bound_.RaisesEvents()) return E_FAIL;
    *id = bound_.Declared().eventsId;
    return S_OK;
}

HRESULT Object::InterfaceSupportsErrorInfo(REFIID id) {
    return IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, bound_.Declared().interfaceId) ? S_OK : S_FALSE;
}

HRESULT Object::EnumConnectionPoints(IEnumConnectionPoints** points) {
    if (points == nullptr) return E_POINTER;
    *points = MakeConnectionPointList(*this);
    return S_OK;
}

HRESULT Object::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    if (!IsEqualIID(id, bound_.Declared().eventsId)) return CONNECT_E_NOCONNECTION;
    *point = MakeConnectionPoint(*this);
    return S_OK;
}

}  // namespace quorix::automation
