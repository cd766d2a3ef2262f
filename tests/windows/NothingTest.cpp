// Each member of each class is called with nothing to work with: empty texts, zeros and null objects.
#include <gtest/gtest.h>

#include "quorix/automation/Classes.h"
#include "tests/windows/support/Functions.h"
#include "tests/windows/support/Late.h"

namespace windowstest {
namespace {

using quorix::automation::Classes;
using quorix::automation::ClassTable;

// One object of each class, or of what an object of a class leads to.
std::vector<Late> OneOfEach() {
    std::vector<Late> all;
    for (const ClassTable* table : Classes()) {
        if (table->Create()) all.push_back(Late::Create(std::wstring(L"Quorix.") + table->Name()));
    }
    const Late session = Late::Create(L"Quorix.cSession");
    for (const wchar_t* part : {L"Roster", L"Presence", L"Agents", L"Rooms", L"Socket"}) {
        all.push_back(session.Object(part));
    }
    all.push_back(session.Object(L"CreateMessage", {Of(L""), Of(0), Of(L""), Of(L"")}));
    all.push_back(Late::Create(L"Quorix.cRosterItem").Object(L"Groups"));
    all.push_back(Late::Create(L"Quorix.cXData").Object(L"Fields"));
    all.push_back(Late::Create(L"Quorix.cXDataField").Object(L"Options"));
    const Late node = Late::Create(L"Quorix.cXML_Node");
    node.Put(L"xml", Of(L"<a><b/></a>"));
    all.push_back(node.Object(L"getNode", {Of(L"//b")}));
    all.push_back(all.back().Object(L"childNodes"));
    return all;
}

Variant NothingOf(VARTYPE type) {
    if (type == VT_BSTR) return Of(L"");
    if (type == VT_BOOL) return Of(false);
    if (type == VT_PTR || type == VT_VARIANT) return Nothing();
    return Of(0);
}

bool IsAnswer(HRESULT code) {
    return code == S_OK || code == DISP_E_EXCEPTION || code == DISP_E_TYPEMISMATCH;
}

TEST(Nothing, IsAnsweredByEachMemberWithSuccessOrAnError) {
    for (const Late& object : OneOfEach()) {
        ComPtr<ITypeInfo> info;
        object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info);
        ForEachFunction(*info.Get(), [&](const FUNCDESC& function) {
            std::vector<Variant> arguments;
            for (SHORT i = 0; i < function.cParams; ++i) {
                arguments.push_back(NothingOf(function.lprgelemdescParam[i].tdesc.vt));
            }
            const auto kind = static_cast<WORD>(function.invkind);
            const HRESULT code = object.TryId(kind, function.memid, std::move(arguments)).code;
            EXPECT_TRUE(IsAnswer(code)) << NameOf(*info.Get(), function.memid) << " answers " << code;
        });
    }
}

}  // namespace
}  // namespace windowstest
