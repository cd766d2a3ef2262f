// What the registry learns, and how objects are made from it.
#include <gtest/gtest.h>

#include "quorix/automation/TypeLibrary.h"
#include "quorix/scripting/Classes.h"
#include "tests/windows/support/Component.h"
#include "tests/windows/support/Late.h"

namespace windowstest {
namespace {

using quorix::automation::FindDeclaration;
using quorix::automation::LoadOwnTypeLibrary;
using quorix::automation::WideName;
using quorix::scripting::Classes;
using quorix::scripting::ClassTable;

GUID DeclaredId(const std::wstring& name) {
    return FindDeclaration(*LoadOwnTypeLibrary().Get(), name.c_str()).classId;
}

std::wstring Printed(REFGUID id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, 40);
    return text;
}

std::wstring RegistryText(HKEY root, const std::wstring& key, const wchar_t* name = nullptr) {
    wchar_t text[1024] = {};
    DWORD size = sizeof text - sizeof(wchar_t);
    RegGetValueW(root, (L"Software\\Classes\\" + key).c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

TEST(Registration, NamesEachCreatableClassByItsProgIdAndItsClassId) {
    int creatable = 0;
    for (const ClassTable* table : Classes()) {
        if (!table->Create()) continue;
        SCOPED_TRACE(table->Name());
        ++creatable;
        CLSID id = CLSID_NULL;
        EXPECT_EQ(CLSIDFromProgID((L"Quorix." + WideName(table->Name())).c_str(), &id), S_OK);
        EXPECT_EQ(Printed(id), Printed(DeclaredId(WideName(table->Name()))));
        ComPtr<IDispatch> made;
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made)), S_OK);
    }
    EXPECT_GE(creatable, 8);
}

TEST(Registration, DeclaresApartmentThreadingAndTheTypeLibrary) {
    const std::wstring key = L"CLSID\\" + Printed(DeclaredId(L"cXML_Node"));
    EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    GUID library = GUID_NULL;
    ASSERT_EQ(CLSIDFromString(RegistryText(HKEY_LOCAL_MACHINE, key + L"\\TypeLib").c_str(), &library), S_OK);
    ComPtr<ITypeLib> loaded;
    EXPECT_EQ(LoadRegTypeLib(library, 1, 0, LOCALE_NEUTRAL, &loaded), S_OK);
}

TEST(Registration, LeavesNothingBehindWhenItIsUndone) {
    const std::wstring classId = Printed(DeclaredId(L"cXML_Node"));
    ASSERT_EQ(Component::Unregister(), S_OK);
    CLSID id;
    EXPECT_NE(CLSIDFromProgID(L"Quorix.cXML_Node", &id), S_OK);
    EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, L"CLSID\\" + classId), L"");
    EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, L"Quorix.cXML_Node"), L"");
    EXPECT_EQ(Component::Unregister(), S_OK) << "a second time";
    ASSERT_EQ(Component::Register(), S_OK);
}

TEST(Registration, CanBeForOneUserAlone) {
    const std::wstring key = L"CLSID\\" + Printed(DeclaredId(L"cXML_Node")) + L"\\ProgID";
    ASSERT_EQ(Component::Install(true, L"user"), S_OK);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, key), L"Quorix.cXML_Node");
    ASSERT_EQ(Component::Install(false, L"user"), S_OK);
    EXPECT_EQ(RegistryText(HKEY_CURRENT_USER, key), L"");
    EXPECT_EQ(RegistryText(HKEY_LOCAL_MACHINE, key), L"Quorix.cXML_Node") << "the machine's own stays";
    EXPECT_EQ(Component::Install(true, L"everybody"), E_INVALIDARG);
}

TEST(Factory, RefusesWhatItCannotMake) {
    const CLSID node = DeclaredId(L"cXML_Node");
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(Component::GetClassObject(node, IID_PPV_ARGS(&factory)), S_OK);
    const Late outer = Late::Create(L"Quorix.cXML_Node");
    void* made = nullptr;
    EXPECT_EQ(factory->CreateInstance(outer.Raw(), IID_IUnknown, &made), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IStream, &made), E_NOINTERFACE);

    ComPtr<IClassFactory> none;
    EXPECT_EQ(Component::GetClassObject(IID_IStream, IID_PPV_ARGS(&none)), CLASS_E_CLASSNOTAVAILABLE);
    // A class that only the library makes.
    EXPECT_EQ(Component::GetClassObject(DeclaredId(L"cXML_Nodes"), IID_PPV_ARGS(&none)),
              CLASS_E_CLASSNOTAVAILABLE);
}

}  // namespace
}  // namespace windowstest
