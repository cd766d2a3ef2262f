// What holds for an object of each class, and for what such objects lead to.
#include <gtest/gtest.h>

#include <olectl.h>

#include "quorix/scripting/Classes.h"
#include "tests/windows/support/Component.h"
#include "tests/windows/support/Functions.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

using quorix::scripting::Classes;
using quorix::scripting::ClassTable;

// One object of each class, or of what an object of a class leads to.
std::vector<Late> OneOfEach() {
    std::vector<Late> all;
    for (const ClassTable* table : Classes()) {
        if (table->Create())
            all.push_back(Late::Create(L"Quorix." + quorix::automation::WideName(table->Name())));
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

// Each of the interfaces, asked at each other one, is there and belongs to the same object.
void ExpectLeadToEachOther(IUnknown* object, const std::vector<IID>& ids) {
    for (const IID& from : ids) {
        ComPtr<IUnknown> start;
        ASSERT_EQ(object->QueryInterface(from, reinterpret_cast<void**>(start.GetAddressOf())), S_OK);
        for (const IID& to : ids) {
            ComPtr<IUnknown> end, identity;
            ASSERT_EQ(start->QueryInterface(to, reinterpret_cast<void**>(end.GetAddressOf())), S_OK);
            ASSERT_EQ(end->QueryInterface(IID_PPV_ARGS(&identity)), S_OK);
            EXPECT_EQ(identity.Get(), object);
        }
        void* other = object;
        EXPECT_EQ(start->QueryInterface(IID_IStream, &other), E_NOINTERFACE);
        EXPECT_EQ(other, nullptr);
    }
}

IID OwnInterface(const Late& object) {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    if (FAILED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info)) || FAILED(info->GetTypeAttr(&attributes)))
        throw std::logic_error("an object without a description");
    const IID id = attributes->guid;
    info->ReleaseTypeAttr(attributes);
    return id;
}

TEST(Interfaces, OfAnObjectLeadToEachOtherAndToThoseTheyDeriveFrom) {
    for (const Late& object : OneOfEach()) {
        SCOPED_TRACE(object.Raw());
        ExpectLeadToEachOther(object.Raw(),
                              {IID_IUnknown, IID_IDispatch, OwnInterface(object), IID_IProvideClassInfo,
                               IID_IProvideClassInfo2, IID_ISupportErrorInfo});
    }
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    ExpectLeadToEachOther(socket.Raw(), {IID_IDispatch, IID_IConnectionPointContainer});
    const ComPtr<IConnectionPoint> point = ConnectionPointOf(socket);
    ExpectLeadToEachOther(point.Get(), {IID_IUnknown, IID_IConnectionPoint});
    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(&connections), S_OK);
    ExpectLeadToEachOther(connections.Get(), {IID_IUnknown, IID_IEnumConnections});
    const Variant elements = Late::Create(L"Quorix.cSearchFields").Get(L"_NewEnum");
    ExpectLeadToEachOther(elements.punkVal, {IID_IUnknown, IID_IEnumVARIANT});
    ComPtr<IClassFactory> factory;
    CLSID node;
    ASSERT_EQ(CLSIDFromProgID(L"Quorix.cXML_Node", &node), S_OK);
    ASSERT_EQ(Component::GetClassObject(node, IID_PPV_ARGS(&factory)), S_OK);
    ExpectLeadToEachOther(factory.Get(), {IID_IUnknown, IID_IClassFactory});
}

// Empty texts, zeros and null objects.
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
