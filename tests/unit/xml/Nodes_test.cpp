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

TEST(XmlNode, EmptyHandleReadsAsNothingAndRefusesChanges) {
    XmlNode none;
    EXPECT_EQ(none.Child(u"a").FirstElement().NextSibling().Text() + none.Name() + none.Xml() +
                  none.Attribute(u"a"),
              u"");
    EXPECT_FALSE(none.Parent() || none.Is(u""));
    EXPECT_TRUE(none.Attributes().empty() && none.Select(u"//a").empty());
    EXPECT_EQ(ErrorOf([&] { none.SetAttribute(u"a", u"x"); }), 91);
}

TEST(XmlNode, EditsInPlace) {
    auto document = Loaded(u"<a b='1' c='2'><d><e/>t</d></a>");
    XmlNode a = document->Root();
    a.SetAttribute(u"b", u"<\"&\u00e9");
    a.RemoveAttribute(u"c");
    a.Child(u"d").Text(u"<new>");
    a.AppendElement(u"n:f").Text(StringView(u"x\0y\xd800\x1\xfffe", 6));  // what XML cannot hold is replaced
    EXPECT_EQ(document->Xml(),
              u"<a b=\"&lt;&quot;&amp;\u00e9\"><d>&lt;new&gt;</d><n:f>x\xfffdy\xfffd\xfffd\xfffd</n:f></a>");
    EXPECT_EQ(ErrorOf([&] { a.AppendElement(u"a\x1"); }), 5);
    a.SetAttribute(u"b", u"\t\r\n");
    a.Text(u"\t\r\n");
    EXPECT_EQ(document->Xml(), u"<a b=\"&#9;&#13;&#10;\">\t&#13;\n</a>") << "so that it reads back as it was";
}

TEST(XmlNode, FindsEachOfManyAttributesWhateverHappensBetween) {
    auto document = Loaded(u"<a><b/></a>");
    XmlNode a = document->Root(), b = a.Child(u"b");
    auto name = [](int i) { return u"n" + ToString(i); };
    for (int i = 0; i < 100; ++i) {
        for (XmlNode element : {a, b}) element.SetAttribute(name(i), u"old");
    }
    for (int i = 0; i < 100; i += 2) a.RemoveAttribute(name(i)), b.SetAttribute(name(i), u"new");
    a.SetAttribute(name(98), u"last");
    for (int i = 1; i < 100; i += 2) a.SetAttribute(name(i), u"new");
    EXPECT_EQ(a.Attributes().size(), 51U);
    EXPECT_EQ(b.Attributes().size(), 100U);
    EXPECT_EQ(a.Attributes().back(), std::pair(name(98), String(u"last")));
    EXPECT_EQ(a.Attribute(name(99)) + b.Attribute(name(98)) + b.Attribute(name(99)), u"newnewold");
    a.RemoveChild(b);
    a.AppendElement(u"c").SetAttribute(name(1), u"x");
    EXPECT_EQ(a.Child(u"c").Attributes().size(), 1U);
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

TEST(XmlNode, MovesAcrossDocumentsWithItsSubtreeAndHandles) {
    auto from = Loaded(u"<r><a i='1'><b>t</b></a> text <c/></r>");
    XmlNode b = from->Root().FirstChild().Child(u"b");
    auto a = XmlDocument::Create();
    a->Root(b.Parent());
    EXPECT_EQ(from->Xml(), u"<r> text <c/></r>");
    auto to = Loaded(u"<z/>");
    to->Root().AppendChild(from->Root().FirstElement());
    from.reset();
    EXPECT_EQ(a->Xml() + to->Xml(), u"<a i=\"1\"><b>t</b></a><z><c/></z>");
    EXPECT_TRUE(a->SelectSingle(u"/a/b") == b);
    a.reset();
    EXPECT_EQ(b.Parent().Attribute(u"i"), u"1");
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

    auto other = XmlDocument::Create();
    other->Root(document->Root().FirstChild());
    document->Root().AppendChild(other->Root());
    document->Root().Text(u"");
    EXPECT_EQ(innermost.Text(), u"t");
}

}  // namespace

}  // namespace quorix
