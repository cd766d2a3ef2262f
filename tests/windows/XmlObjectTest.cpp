// Live nodes of XML documents through automation.
#include <gtest/gtest.h>

#include "tests/windows/support/Late.h"

namespace windowstest {
namespace {

Late RootOf(const wchar_t* xml) {
    const Late document = Late::Create(L"Quorix.cXML_Node");
    document.Put(L"xml", Of(xml));
    return document.Object(L"getNode", {Of(L"/r")});
}

std::string Joined(const Late& list) {
    const Variant enumerator = list.Get(L"_NewEnum");
    ComPtr<IEnumVARIANT> all;
    enumerator.punkVal->QueryInterface(IID_PPV_ARGS(&all));
    std::string names;
    for (Variant element; all->Next(1, &element, nullptr) == S_OK; VariantClear(&element)) {
        names += Late(element).Text(L"nodeName") + " ";
    }
    return names;
}

TEST(DomNode, WalksItsDocument) {
    const Late root = RootOf(L"<r a='1' p:b='2'><x/>text<y><z/></y></r>");
    EXPECT_EQ(Joined(root.Object(L"childNodes")), "x #text y ");
    EXPECT_EQ(Joined(root.Object(L"attributes")), "a p:b ");
    EXPECT_EQ(root.Text(L"getAttribute", {Of(L"p:b")}), "2");
    EXPECT_EQ(root.Text(L"getAttribute", {Of(L"none")}), "Null");
    EXPECT_EQ(root.Object(L"firstChild").Object(L"nextSibling").Text(L"nodeName"), "#text");
    EXPECT_EQ(root.Object(L"selectSingleNode", {Of(L"y/z")}).Object(L"parentNode").Text(L"nodeName"), "y");
    EXPECT_EQ(Joined(root.Object(L"selectNodes", {Of(L"//*")})), "r x y z ");
    EXPECT_EQ(root.Text(L"selectSingleNode", {Of(L"none")}), "Nothing");
    EXPECT_EQ(root.Text(L"parentNode"), "Nothing");
}

TEST(DomNode, ChangesItsDocument) {
    const Late root = RootOf(L"<r><a/><b/></r>");
    const Late children = root.Object(L"childNodes");
    const Late a = root.Object(L"firstChild");
    a.Put(L"text", Of(L"new & newer"));
    root.Do(L"setAttribute", {Of(L"id"), Of(7)});
    EXPECT_EQ(root.Object(L"appendChild", {Of(a.Raw())}).Raw(), a.Raw());
    EXPECT_EQ(root.Text(L"xml"), R"(<r id="7"><b/><a>new &amp; newer</a></r>)");
    EXPECT_EQ(root.Object(L"removeChild", {Of(a.Raw())}).Raw(), a.Raw());
    EXPECT_EQ(Joined(children), "b ") << "the list follows";
    EXPECT_EQ(root.Try(DISPATCH_METHOD, L"removeChild", {Of(a.Raw())}).error,
              static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(a.Text(L"nodeName"), "a") << "still alive";
}

}  // namespace
}  // namespace windowstest
