// Nodes: reading, editing, moving, and how long they live.
#include <gtest/gtest.h>

#include "quorix/xml/XmlDocument.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {

namespace {

std::shared_ptr<XmlDocument> Loaded(StringView text) {
    auto document = XmlDocument::Create();
    EXPECT_TRUE(document->Load(text));
    return document;
}

TEST(XmlNode, TellsKindsAndNames) {
    auto document = Loaded(u"<p:a>t<![CDATA[d]]><!--c--><?i x?></p:a>");
    XmlNode node = document->Root();
    EXPECT_TRUE(node.IsElement() && node.Is(u"p:a") && !node.Is(u"a") && !node.Is(u"p:ab") && !node.IsText());
    EXPECT_EQ(node.Name(), u"p:a");
    String names;
    for (XmlNode child = node.FirstChild(); child; child = child.NextSibling()) {
        names += child.Name() + (child.IsText() ? u"!" : u"") + u"=" + child.Text() + u" ";
    }
    EXPECT_EQ(names, u"#text!=t #cdata-section!=d #comment=c i=x ");
    EXPECT_EQ(node.Text(), u"td");
}

TEST(XmlNode, EmptyHandleReadsAsNothingAndRefusesChanges) {
    XmlNode none;
    EXPECT_EQ(none.Child(u"a").FirstElement().NextSibling().Text() + none.Name() + none.Xml() +
                  none.Attribute(u"a"),
              u"");
    EXPECT_FALSE(none.Parent() || none.Is(u""));
    EXPECT_TRUE(none.Attributes().empty() && none.Select(u"//a").empty());
    EXPECT_EQ(ErrorOf([&] { none.SetAttribute(u"a", u"x"); }), 91);
    EXPECT_EQ(ErrorOf([&] { XmlDocument::Detach(none); }), 91);
}

TEST(XmlNode, EditsInPlace) {
    auto document = Loaded(u"<a b='1' c='2'><d><e/>t</d></a>");
    XmlNode a = document->Root();
    a.SetAttribute(u"b", u"<\"&\u00e9");
    a.RemoveAttribute(u"c");
    a.Child(u"d").Text(u"<new>");
    a.AppendElement(u"n:f").Text(StringView(u"x\0y\xd800z", 5));  // what XML has no place for is replaced
    EXPECT_EQ(document->Xml(),
              u"<a b=\"&lt;&quot;&amp;\u00e9\"><d>&lt;new&gt;</d><n:f>x\xfffdy\xfffdz</n:f></a>");
}

TEST(XmlNode, RefusesNamesAndPlacesThatNoTreeHas) {
    auto document = Loaded(u"<a><b><c/></b>t</a>");
    XmlNode a = document->Root();
    XmlNode b = a.Child(u"b");
    for (StringView name : {StringView(u""), StringView(u"x y"), StringView(u"<"), StringView(u"a\0", 2)}) {
        EXPECT_EQ(ErrorOf([&] { a.AppendElement(name); }), 5);
        EXPECT_EQ(ErrorOf([&] { a.SetAttribute(name, u""); }), 5);
    }
    EXPECT_EQ(ErrorOf([&] { b.Child(u"c").AppendChild(a); }), 5);
    EXPECT_EQ(ErrorOf([&] { b.AppendChild(b); }), 5);
    EXPECT_EQ(ErrorOf([&] { a.AppendChild(a.SelectSingle(u"/")); }), 5);
    EXPECT_EQ(document->Xml(), u"<a><b><c/></b>t</a>");
}

TEST(XmlNode, OutlivesItsDocumentItsParentAndALoad) {
    auto document = Loaded(u"<a x='1'><b i='1'><c>t</c></b></a>");
    XmlNode attribute = document->Root().SelectSingle(u"@x");
    document->Root().RemoveAttribute(u"x");
    XmlNode unplaced = document->CreateElement(u"u");
    XmlNode b = document->Root().Child(u"b");
    XmlNode c = b.Child(u"c");
    document->Root().Text(u"gone");
    EXPECT_EQ(document->Xml(), u"<a>gone</a>");
    EXPECT_FALSE(b.Parent());

    ASSERT_TRUE(document->Load(u"<other/>"));
    EXPECT_EQ(b.Xml(), u"<b i=\"1\"><c>t</c></b>");
    document.reset();
    b = XmlNode();
    EXPECT_EQ(c.Parent().Attribute(u"i") + attribute.Text() + unplaced.Xml(), u"11<u/>");
    EXPECT_FALSE(attribute.NextSibling() || unplaced.NextSibling());
}

TEST(XmlNode, AppendChildMovesAlsoAcrossDocuments) {
    auto from = Loaded(u"<a x='1'><b y='2'>t</b><?i d?></a>");
    auto to = Loaded(u"<z><k/></z>");
    XmlNode a = from->Root();
    a.AppendChild(a.FirstChild());
    EXPECT_EQ(from->Xml(), u"<a x=\"1\"><?i d?><b y=\"2\">t</b></a>");

    auto built = XmlDocument::Create();
    built->Root(built->CreateElement(u"w"));
    XmlNode b = built->Root().AppendChild(a.Child(u"b"));
    to->Root().AppendChild(a.FirstChild());
    from.reset();
    a = XmlNode();
    b.AppendChild(to->Root().Child(u"k"));
    EXPECT_EQ(built->Xml(), u"<w><b y=\"2\">t<k/></b></w>");
    EXPECT_EQ(to->Xml(), u"<z><?i d?></z>");
}

TEST(XmlDetach, TakesTheSubtreeAndItsHandlesAlong) {
    auto content = XmlDocument::Create();
    ASSERT_TRUE(content->LoadContent(u"<a i='1'><b>t</b></a> text <c/>"));
    XmlNode b = content->Root().FirstChild().Child(u"b");
    auto a = XmlDocument::Detach(b.Parent());
    auto text = XmlDocument::Detach(content->Root().FirstChild());
    EXPECT_EQ(content->Root().FirstChild().Xml(), u"<c/>");
    content.reset();

    EXPECT_EQ(a->Xml(), u"<a i=\"1\"><b>t</b></a>");
    EXPECT_EQ(text->Xml(), u" text ");
    EXPECT_FALSE(text->Root());
    EXPECT_TRUE(a->SelectSingle(u"/a/b") == b);
    a.reset();
    EXPECT_EQ(b.Parent().Attribute(u"i"), u"1");
    EXPECT_EQ(ErrorOf([&] { XmlDocument::Detach(b.SelectSingle(u"/")); }), 5);
}

// Every operation on a tree must do without recursion: only parsed documents are bounded in depth.
TEST(XmlDepth, OfABuiltTreeHasNoBound) {
    constexpr int kDepth = 200000;
    auto document = XmlDocument::Create();
    document->Root(document->CreateElement(u"a"));
    XmlNode innermost = document->Root();
    for (int i = 1; i < kDepth; ++i) innermost = innermost.AppendElement(u"a");
    innermost.Text(u"t");
    EXPECT_EQ(document->Root().Text(), u"t");
    EXPECT_EQ(document->Xml().size(), 7U * kDepth + 1);
    EXPECT_TRUE(document->SelectSingle(u"//a[not(a)]") == innermost);

    auto other = XmlDocument::Detach(document->Root().FirstChild());
    document->Root().AppendChild(other->Root());
    document->Root().Text(u"");
    EXPECT_EQ(innermost.Text(), u"t");
}

// 200,000 children: anything that walks siblings on each step would take minutes.
TEST(XmlBreadth, CostsNoMorePerChild) {
    constexpr int kCount = 200000;
    auto document = XmlDocument::Create();
    document->Root(document->CreateElement(u"r"));
    XmlNode root = document->Root();
    for (int i = 0; i < kCount; ++i) root.AppendElement(u"i").SetAttribute(u"n", ToString(i));
    auto copy = Loaded(document->Xml());
    int count = 0;
    while (XmlNode child = copy->Root().FirstElement())
        count += XmlDocument::Detach(child)->Root().Is(u"i") ? 1 : 0;
    EXPECT_EQ(count, kCount);
    EXPECT_EQ(document->SelectSingle(u"/r/i[last()]").Attribute(u"n"), u"199999");
}

}  // namespace

}  // namespace quorix
