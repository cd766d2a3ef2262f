// The behaviour that every object shares: errors, identity, reference counts, default members, threads.
#include <gtest/gtest.h>

#include <olectl.h>

#include <thread>

#include "tests/windows/support/Component.h"
#include "tests/windows/support/Late.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

constexpr WORD kCall = DISPATCH_METHOD;
constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;

Late FieldsWithTwo() {
    Late fields = Late::Create(L"Quorix.cSearchFields");
    fields.Do(L"Add", {Of(L"first"), Of(L"1"), Of(L"key")});
    fields.Do(L"Add", {Of(L"last"), Of(L"2")});
    return fields;
}

TEST(Object, AnswersEachWrongCallWithItsCode) {
    const Late node = Late::Create(L"Quorix.cXML_Node");
    const Late other = Late::Create(L"Quorix.cSearchField");
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    struct Case {
        const char* what;
        Answer answer;
        HRESULT code;
    };
    const Case cases[] = {
        {"a surplus argument", node.Try(kCall, L"GetNamespace", {Of(1)}), DISP_E_BADPARAMCOUNT},
        {"a missing argument", node.Try(kCall, L"GetTag"), DISP_E_PARAMNOTOPTIONAL},
        {"a required argument left out", node.Try(kCall, L"GetTag", {LeftOut()}), DISP_E_PARAMNOTOPTIONAL},
        {"an optional argument left out", node.Try(kCall, L"GetTag", {Of(L"a"), LeftOut()}), S_OK},
        {"text for a list of nodes", node.Try(kCall, L"GetTag", {Of(L"a"), Of(L"b")}), DISP_E_TYPEMISMATCH},
        {"another class", node.Try(kCall, L"GetTag", {Of(L"a"), Of(other.Raw())}), DISP_E_TYPEMISMATCH},
        {"an object for a text", node.Try(kCall, L"GetTag", {Of(other.Raw())}), DISP_E_TYPEMISMATCH},
        {"no object for a text", node.Try(kCall, L"GetTag", {Nothing()}), DISP_E_TYPEMISMATCH},
        {"no object at all", node.Try(kCall, L"GetTag", {Of(L"a"), Nothing()}), S_OK},
        {"writing a method", node.Try(kPut, L"GetNamespace", {Of(L"a")}), DISP_E_MEMBERNOTFOUND},
        {"an unknown number", node.TryId(kCall, 4711), DISP_E_MEMBERNOTFOUND},
        {"a property put without a value", node.Try(kPut, L"xml"), DISP_E_PARAMNOTOPTIONAL},
        {"a word for a number", socket.Try(kPut, L"TimeOut", {Of(L"soon")}), DISP_E_TYPEMISMATCH},
        {"a number too large", socket.Try(kPut, L"TimeOut", {Of(L"99999999999")}), DISP_E_OVERFLOW},
        {"a number as text", socket.Try(kPut, L"TimeOut", {Of(L"2500")}), S_OK},
        {"a word for a flag", socket.Try(kPut, L"SSLEnable", {Of(L"perhaps")}), DISP_E_TYPEMISMATCH},
    };
    for (const Case& c : cases) EXPECT_EQ(c.answer.code, c.code) << c.what;
    EXPECT_EQ(cases[4].answer.badArgument, 0U) << "counted from the last argument";
    LPOLESTR unknown = const_cast<wchar_t*>(L"NoSuchMember");
    DISPID id = 0;
    EXPECT_EQ(node->GetIDsOfNames(IID_NULL, &unknown, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(id, DISPID_UNKNOWN);
}

TEST(Object, TurnsErrorsIntoExceptionsWithNumberTextAndSource) {
    const Late fields = FieldsWithTwo();
    const Answer answer = fields.Try(kCall, L"Add", {Of(L"x"), Of(L"y"), Of(L"key")});
    EXPECT_EQ(answer.code, DISP_E_EXCEPTION);
    EXPECT_EQ(answer.error, static_cast<HRESULT>(0x800A0000) + 457);
    EXPECT_FALSE(answer.text.empty());
    EXPECT_EQ(fields.Text(L"Count"), "2") << "the refused one is not in it";

    ComPtr<IErrorInfo> left;  // for those who ask the thread
    Variant source;
    ASSERT_EQ(GetErrorInfo(0, &left), S_OK);
    EXPECT_EQ(left->GetSource(&source.bstrVal), S_OK);
    source.vt = VT_BSTR;
    EXPECT_EQ(Words(source), "Quorix.cSearchFields");
}

TEST(Object, TakesNamedArguments) {
    const Late node = Late::Create(L"Quorix.cXML_Node");
    node.Put(L"xml", Of(L"<a><b>old</b></a>"));
    wchar_t setTag[] = L"SetTag", text[] = L"Text", tag[] = L"TagName";
    LPOLESTR names[] = {setTag, text, tag};
    DISPID ids[3];
    ASSERT_EQ(node->GetIDsOfNames(IID_NULL, names, 3, LOCALE_USER_DEFAULT, ids), S_OK);
    Variant values[] = {Of(L"new"), Of(L"b")};
    DISPPARAMS parameters = {values, ids + 1, 2, 2};
    ASSERT_EQ(
        node->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, kCall, &parameters, nullptr, nullptr, nullptr),
        S_OK);
    EXPECT_EQ(node.Text(L"xml"), "<a><b>new</b></a>");
}

TEST(Object, HasExactlyTheReferencesThatItsClientsHold) {
    Late fields = FieldsWithTwo();
    EXPECT_EQ(fields.References(), 1U);
    Late item = fields.Object(L"Item", {Of(1)});
    EXPECT_EQ(item.References(), 1U);
    const Late again = fields.Object(L"Item", {Of(1)});
    EXPECT_EQ(item.References(), 2U);

    fields.Try(kGet, L"Item", {Of(99)});                    // fails inside
    fields.Try(kCall, L"Add", {Of(item.Raw()), Of(L"x")});  // fails on the way in
    fields.Try(kCall, L"NoSuchMember", {Of(item.Raw())});
    fields.Text(L"Item", {Of(1)});
    EXPECT_EQ(fields.References(), 1U);
    EXPECT_EQ(item.References(), 2U);

    fields.Release();
    EXPECT_FALSE(Component::IsUnused());
    EXPECT_EQ(item.Text(L"FieldName"), "first") << "an element outlives its collection";
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

TEST(Object, HasInterfacesThatLeadToEachOtherAndToThoseTheyDeriveFrom) {
    const Late session = Late::Create(L"Quorix.cSession");
    ExpectLeadToEachOther(session.Raw(),
                          {IID_IUnknown, IID_IDispatch, OwnInterface(session), IID_IProvideClassInfo,
                           IID_IProvideClassInfo2, IID_ISupportErrorInfo});
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

TEST(Object, RefusesCallsFromAnotherThread) {
    const Late session = Late::Create(L"Quorix.cSession");
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    const DISPID id = socket.Id(L"TimeOut");
    const ComPtr<IConnectionPoint> point = ConnectionPointOf(socket);
    HRESULT called = S_OK, connected = S_OK, lent = S_OK;
    std::thread([&] {
        DISPPARAMS none = {};
        Variant value;
        DWORD cookie = 0;
        CoInitialize(nullptr);
        lent = Late::Create(L"Quorix.cAuth").Try(kCall, L"SetSession", {Of(session.Raw())}).code;
        CoUninitialize();
        called = socket->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kGet, &none, &value, nullptr, nullptr);
        connected = point->Advise(socket.Raw(), &cookie);
    }).join();
    EXPECT_EQ(called, RPC_E_WRONG_THREAD);
    EXPECT_EQ(connected, RPC_E_WRONG_THREAD);
    EXPECT_EQ(lent, RPC_E_WRONG_THREAD) << "an argument of this thread";
}

TEST(Object, EndsOnItsOwnThreadWhenAnotherLetsItGo) {
    const ComPtr<Sink> sink = quorix::automation::Adopt(new Sink);
    const auto sinkReferences = [&] {
        sink->AddRef();
        return sink->Release();
    };
    Late socket = Late::Create(L"Quorix.cSocketSSL");
    DWORD cookie = 0;
    ASSERT_EQ(ConnectionPointOf(socket)->Advise(sink.Get(), &cookie), S_OK);
    IDispatch* last = socket.Raw();
    last->AddRef();
    socket.Release();
    std::thread([&] { EXPECT_EQ(last->Release(), 0U); }).join();
    EXPECT_EQ(sinkReferences(), 2U) << "not from over there";
    EXPECT_EQ(Late::Create(L"Quorix.cSocketSSL").Text(L"State"), "1");
    EXPECT_EQ(sinkReferences(), 1U);
}

}  // namespace
}  // namespace windowstest
