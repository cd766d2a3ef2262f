// The functions that an interface of the type library declares.
#pragma once

#include <oaidl.h>

#include <string>

#include "tests/windows/support/Late.h"

namespace windowstest {

// The name of a member, or with MEMBERID_NIL that of the type.
inline std::string NameOf(ITypeInfo& info, MEMBERID id) {
    Variant name;
    info.GetDocumentation(id, &name.bstrVal, nullptr, nullptr, nullptr);
    name.vt = VT_BSTR;
    return Words(name);
}

// The members of IDispatch itself are listed among those of a dispatch interface, under numbers of their own.
inline bool IsInherited(MEMBERID id) {
    const auto range = static_cast<ULONG>(id) & 0xFFFF0000;
    return range == 0x60000000 || range == 0x60010000;
}

// Calls `visit` with each FUNCDESC, those of IDispatch left out.
template <class Visit>
void ForEachFunction(ITypeInfo& info, Visit visit) {
    TYPEATTR* type = nullptr;
    info.GetTypeAttr(&type);
    for (UINT i = 0; i < type->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        info.GetFuncDesc(i, &function);
        if (!IsInherited(function->memid)) visit(static_cast<const FUNCDESC&>(*function));
        info.ReleaseFuncDesc(function);
    }
    info.ReleaseTypeAttr(type);
}

}  // namespace windowstest
