#include "quorix/automation/Invocation.h"

#include <new>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"

namespace quorix::automation {
namespace {

constexpr HRESULT kFirstErrorNumber = static_cast<HRESULT>(0x800A0000);

bool IsPut(const Member& member) { return member.kind == scripting::MemberKind::Put; }
unsigned CountOf(const Member& member) { return static_cast<unsigned>(member.parameters.size()); }

// Where the argument at `index` of the call is wanted. Named ones come first in a call.
unsigned PositionOf(const DISPPARAMS& parameters, unsigned index, const Member& member) {
    if (index >= parameters.cNamedArgs) return parameters.cArgs - 1 - index;
    const DISPID name = parameters.rgdispidNamedArgs[index];
    if (name == DISPID_PROPERTYPUT && IsPut(member)) return CountOf(member) - 1;
    if (name < 0 || static_cast<unsigned>(name) >= CountOf(member)) {
        throw BadArgument{DISP_E_PARAMNOTFOUND, parameters.cArgs - 1 - index};
    }
    return static_cast<unsigned>(name);
}

// The arguments in the order of the parameters; null where one was left out.
std::vector<const VARIANT*> InOrder(const DISPPARAMS& parameters, const Member& member) {
    if (parameters.cArgs > CountOf(member)) throw BadArgument{DISP_E_BADPARAMCOUNT};
    std::vector<const VARIANT*> values(CountOf(member), nullptr);
    for (unsigned i = 0; i < parameters.cArgs; ++i) {
        values[PositionOf(parameters, i, member)] = &parameters.rgvarg[i];
    }
    return values;
}

scripting::Value Take(const VARIANT& value, const Member& member, unsigned position) {
    try {
        return ValueOf(value, member.parameters[position].type);
    } catch (const BadArgument& bad) {
        throw BadArgument{bad.code, position};
    }
}

scripting::Values Collect(const DISPPARAMS& parameters, const Member& member) {
    const std::vector<const VARIANT*> given = InOrder(parameters, member);
    for (unsigned i = 0; i < given.size(); ++i) {
        const bool isMissing = given[i] == nullptr || IsMissing(*given[i]);
        if (isMissing && !member.parameters[i].isOptional) throw BadArgument{DISP_E_PARAMNOTOPTIONAL, i};
    }
    scripting::Values values(given.size());
    for (unsigned i = 0; i < given.size(); ++i) {
        if (given[i] != nullptr) values[i] = Take(*given[i], member, i);
    }
    return values;
}

// `object.Items(2)` is one call to those who write it: the arguments are for the default member of what the
// property returns.
HRESULT PassOn(const Member& member, const Invocation& invocation, VARIANT* result, EXCEPINFO* exception,
               UINT* badArgument) {
    const Variant owner = VariantOf(member.thunk(invocation.instance, {}));
    if (owner.vt != VT_DISPATCH || owner.pdispVal == nullptr) return DISP_E_BADPARAMCOUNT;
    DISPPARAMS parameters = invocation.parameters;
    return owner.pdispVal->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, invocation.kinds, &parameters,
                                  result, exception, badArgument);
}

bool MeansItsResult(const Member& member, const Invocation& invocation) {
    return member.kind == scripting::MemberKind::Get && member.parameters.empty() &&
           invocation.parameters.cArgs > 0;
}

void LeaveErrorInfo(StringView source, StringView text) {
    ComPtr<ICreateErrorInfo> made;
    ComPtr<IErrorInfo> info;
    if (FAILED(CreateErrorInfo(&made)) || FAILED(made.As(&info))) return;
    made->SetSource(const_cast<wchar_t*>(Wide(String(source).c_str())));
    made->SetDescription(const_cast<wchar_t*>(Wide(String(text).c_str())));
    SetErrorInfo(0, info.Get());
}

HRESULT Report(const Invocation& invocation, HRESULT code, const String& text, EXCEPINFO* exception) {
    const String source = Concat({u"Quorix.", TextFromUtf8(invocation.bound.Table().Name())});
    LeaveErrorInfo(source, text);
    if (exception != nullptr) {
        *exception = {};
        exception->scode = code;
        exception->bstrSource = SysAllocString(Wide(source.c_str()));
        exception->bstrDescription = SysAllocString(Wide(text.c_str()));
    }
    return DISP_E_EXCEPTION;
}

HRESULT Call(const Invocation& invocation, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
    const Member* member = invocation.bound.Find(invocation.id, invocation.kinds);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    if (MeansItsResult(*member, invocation)) {
        return PassOn(*member, invocation, result, exception, badArgument);
    }
    Variant made = VariantOf(member->thunk(invocation.instance, Collect(invocation.parameters, *member)));
    if (result != nullptr) made.MoveTo(result);
    return S_OK;
}

}  // namespace

HRESULT InvokeMember(const Invocation& invocation, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
    if (result != nullptr) VariantInit(result);
    try {
        return Call(invocation, result, exception, badArgument);
    } catch (const BadArgument& bad) {
        // Reported by its place in the call, which runs backwards.
        const unsigned last = invocation.parameters.cArgs > 0 ? invocation.parameters.cArgs - 1 : 0;
        if (badArgument != nullptr) *badArgument = bad.position > last ? 0 : last - bad.position;
        return bad.code;
    } catch (const AutomationError& error) {
        return Report(invocation, kFirstErrorNumber + error.Number(), error.Description(), exception);
    } catch (const std::bad_alloc&) {
        return Report(invocation, E_OUTOFMEMORY, u"Out of memory", exception);
    } catch (const std::exception& error) {
        return Report(invocation, E_FAIL, TextFromUtf8(error.what()), exception);
    }
}

}  // namespace quorix::automation
