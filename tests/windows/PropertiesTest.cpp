// Each property of each creatable class keeps what is written into it, apart from all the others.
#include <gtest/gtest.h>

#include <map>

#include "quorix/automation/Classes.h"
#include "tests/windows/support/Functions.h"
#include "tests/windows/support/Late.h"

namespace windowstest {
namespace {

using quorix::automation::Classes;
using quorix::automation::ClassTable;
using quorix::automation::Declaration;
using quorix::automation::FindDeclaration;
using quorix::automation::LoadOwnTypeLibrary;

struct Property {
    std::wstring name;
    VARTYPE type;
};

// Those that are written as plain values; enumerations as numbers.
std::vector<Property> WritableIn(ITypeInfo& info) {
    std::vector<Property> all;
    ForEachFunction(info, [&](const FUNCDESC& function) {
        if (function.invkind != INVOKE_PROPERTYPUT) return;
        const VARTYPE declared = function.lprgelemdescParam[0].tdesc.vt;
        all.push_back({NameOf(info, function.memid), declared == VT_USERDEFINED ? VARTYPE{VT_I4} : declared});
    });
    return all;
}

Variant Sample(const Property& property, int number) {
    if (property.type == VT_BSTR) return Of((L"text of " + property.name).c_str());
    if (property.type == VT_BOOL) return Of(number % 2 == 0);
    return Of(number);
}

// Setting these does more than storing: text that is parsed, handles that are closed.
bool IsPlain(const ClassTable& table, const Property& property) {
    if (std::wstring_view(table.Name()) == L"cSocketSSL")
        return property.name.find(L"Handle") == std::wstring::npos;
    return property.name != L"xml";
}

TEST(Properties, KeepWhatIsWrittenIntoThem) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    int checked = 0;
    for (const ClassTable* table : Classes()) {
        if (!table->Create()) continue;
        const Declaration declared = FindDeclaration(*library.Get(), table->Name());
        const Late object = Late::Create(std::wstring(L"Quorix.") + table->Name());
        std::map<std::wstring, std::string> written;
        int number = 0;
        for (const Property& property : WritableIn(*declared.interfaceInfo.Get())) {
            if (!IsPlain(*table, property)) continue;
            const Variant value = Sample(property, ++number);
            object.Put(property.name.c_str(), value);
            written[property.name] = Words(value);
        }
        for (const auto& [name, value] : written) {
            EXPECT_EQ(object.Text(name.c_str()), value) << std::string(name.begin(), name.end());
            ++checked;
        }
        if (table->Name() == std::wstring_view(L"cSocketSSL")) object.Put(L"State", Of(1));
    }
    EXPECT_GT(checked, 100);
}

}  // namespace
}  // namespace windowstest
