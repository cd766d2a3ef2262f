// XML documents and live nodes through automation.
#include <gtest/gtest.h>

#include "tests/windows/support/Late.h"

namespace windowstest {
namespace {

Late Loaded(const wchar_t* xml) {
    Late node = Late::Create(L"Quorix.cXML_Node");
    node.Put(L"xml", Of(xml));
    return node;
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

TEST(DomNode, IsLiveBothWays) {
    const Late document = Loaded(L"<m to='a'><b>x</b></m>");
    const Late root = document.Object(L"getNode", {Of(L"/m")});
    const Late body = root.Object(L"firstChild");
    body.Put(L"text", Of(L"new & newer"));
    root.Do(L"setAttribute", {Of(L"to"), Of(L"c")});
    root.Do(L"setAttribute", {Of(L"id"), Of(7)});
    EXPECT_EQ(document.Text(L"xml"), R"(<m to="c" id="7"><b>new &amp; newer</b></m>)");
    document.Do(L"SetTag", {Of(L"b"), Of(L"last")});
    EXPECT_EQ(body.Text(L"text"), "last");
    EXPECT_EQ(body.Text(L"xml"), "<b>last</b>");
}

TEST(DomNode, WalksItsDocument) {
    const Late root = Loaded(L"<r a='1' p:b='2'><x/>text<y><z/></y></r>").Object(L"getNode", {Of(L"/r")});
    EXPECT_EQ(Joined(root.Object(L"childNodes")), "x #text y ");
    EXPECT_EQ(Joined(root.Object(L"attributes")), "a p:b ");
    EXPECT_EQ(root.Text(L"getAttribute", {Of(L"p:b")}), "2");
    EXPECT_EQ(root.Text(L"getAttribute", {Of(L"none")}), "Null");
    EXPECT_EQ(root.Object(L"firstChild").Object(L"nextSibling").Text(L"nodeName"), "#text");
    EXPECT_EQ(root.Object(L"selectSingleNode", {Of(L"y/z")}).Object(L"parentNode").Text(L"nodeName"), "y");
    EXPECT_EQ(Joined(root.Object(L"selectNodes", {Of(L"//*")})), "r x y z ");
    EXPECT_EQ(root.Text(L"selectSingleNode", {Of(L"none")}), "Nothing");
    EXPECT_EQ(root.Text(L"parentNode"), "Nothing");
    EXPECT_EQ(root.Text(L"hasChildNodes"), "True");

    const Late attributes = root.Object(L"attributes");
    EXPECT_EQ(attributes.Text(L"length"), "2");
    EXPECT_EQ(attributes.Object(L"getNamedItem", {Of(L"a")}).Text(L"text"), "1");
    EXPECT_EQ(attributes.Object(L"item", {Of(1)}).Text(L"nodeName"), "p:b");
    EXPECT_EQ(attributes.Text(L"item", {Of(2)}), "Nothing");
}

TEST(DomNode, MovesAndRemovesChildren) {
    const Late root = Loaded(L"<r><a/><b/></r>").Object(L"getNode", {Of(L"/r")});
    const Late children = root.Object(L"childNodes");
    const Late a = root.Object(L"firstChild");
    EXPECT_EQ(root.Object(L"appendChild", {Of(a.Raw())}).Raw(), a.Raw());
    EXPECT_EQ(Joined(children), "b a ");
    EXPECT_EQ(root.Object(L"removeChild", {Of(a.Raw())}).Raw(), a.Raw());
    EXPECT_EQ(children.Text(L"length"), "1") << "the list follows";
    EXPECT_EQ(root.Try(DISPATCH_METHOD, L"removeChild", {Of(a.Raw())}).error,
              static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(a.Text(L"xml"), "<a/>") << "still alive";
}

TEST(DomNode, LimitsASearchToTheNodesGiven) {
    const Late document = Loaded(L"<r><q><n>1</n></q><s><n>2</n></s></r>");
    const Late nodes = document.Object(L"getNode", {Of(L"/r")}).Object(L"selectNodes", {Of(L"//s")});
    EXPECT_EQ(document.Text(L"GetTag", {Of(L"n")}), "1");
    EXPECT_EQ(document.Text(L"GetTag", {Of(L"n"), Of(nodes.Raw())}), "2");
    document.Do(L"SetTag", {Of(L"n"), Of(L"3"), Of(nodes.Raw())});
    EXPECT_EQ(document.Text(L"xml"), "<r><q><n>1</n></q><s><n>3</n></s></r>");
}

TEST(XmlNode, HandsOutCopiesAsACollection) {
    const Late document = Loaded(L"<r><n>1</n><n>2</n></r>");
    const Late copies = document.Object(L"getNodes", {Of(L"//n")});
    ASSERT_EQ(copies.Text(L"Count"), "2");
    copies.Object(L"Item", {Of(2)}).Put(L"xml", Of(L"<m/>"));
    EXPECT_EQ(document.Text(L"xml"), "<r><n>1</n><n>2</n></r>");
    EXPECT_EQ(copies.Object(L"Item", {Of(2)}).Text(L"GetNamespace"), "m");
    copies.Do(L"Add", {Of(document.Raw()), Of(L"all")});
    EXPECT_EQ(copies.Object(L"Item", {Of(L"all")}).Raw(), document.Raw());
    copies.Do(L"Remove", {Of(1)});
    EXPECT_EQ(copies.Text(L"Count"), "2");
}

TEST(XmlWriter, BuildsADocument) {
    const Late writer = Late::Create(L"Quorix.cXML_Writer");
    writer.Do(L"createProcessingInstruction", {Of(L"xml"), Of(L"version='1.0'")});
    writer.Do(L"setRootElement", {Of(L"r"), Of(L"a"), Of(L"1")});
    writer.Do(L"setNode", {Of(L"n"), Of(L"x<y")});
    writer.Do(L"setAttrib", {Of(L"b"), Of(L"2")});
    const Late node = writer.Object(L"addNode");
    writer.Do(L"setNode", {Of(L"m"), Of(L"")});
    writer.Do(L"addNode", {Of(node.Raw())});
    EXPECT_NE(writer.Text(L"xml").find(R"(<r a="1"><n b="2">x&lt;y<m/></n></r>)"), std::string::npos)
        << writer.Text(L"xml");
}

}  // namespace
}  // namespace windowstest
