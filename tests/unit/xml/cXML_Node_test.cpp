#include "quorix/xml/cXML_Node.h"

#include <gtest/gtest.h>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"

namespace quorix {

namespace {

cXML_Node Wrapped(StringView text) {
    cXML_Node node;
    node.xml(text);
    return node;
}

const char16_t* const kIq =
    u"<iq id='1'><query id='2' xmlns='q'><item a='x'>i1</item></query><item a='y' "
    u"b='z'>i2<sub>s</sub></item></iq>";

TEST(cXML_Node, FindsTagsLevelByLevelBelowTheRootAndAttributesFromTheRootOn) {
    cXML_Node node = Wrapped(kIq);
    EXPECT_EQ(node.GetTag(u"item") + node.GetTag(u"sub") + node.GetTag(u"absent"), u"i2ss");
    EXPECT_TRUE(node.TagExists(u"query") && node.FindTag(u"sub"));
    EXPECT_FALSE(node.TagExists(u"iq") || node.FindTag(u"Item") || node.TagExists(u"#text"));
    EXPECT_EQ(node.GetAttrib(u"id") + node.GetAttrib(u"a") + node.GetAttrib(u"b") + node.GetAttrib(u"c"),
              u"1xz");
    EXPECT_TRUE(node.FindAttrib(u"b"));
    EXPECT_FALSE(node.FindAttrib(u"c"));
}

TEST(cXML_Node, SearchesOnlyTheGivenNodes) {
    cXML_Node node = Wrapped(kIq);
    cXML_Node::Nodes query = {node.getNode(u"//query")};
    EXPECT_EQ(node.GetTag(u"item", query) + node.GetAttrib(u"id", query), u"i12");
    EXPECT_FALSE(node.TagExists(u"sub", query) || node.TagExists(u"item", {XmlNode()}));

    node.SetTag(u"item", u"new", query);
    node.AddTag(u"t", u"item", u"", query);
    node.AddAttrib(u"n", u"item", u"1", query);
    node.setAttrib(u"id", u"3", query);
    EXPECT_EQ(query[0].Xml(), u"<query id=\"3\" xmlns=\"q\"><item a=\"x\" n=\"1\">new<t/></item></query>");
    EXPECT_EQ(node.GetAttrib(u"id"), u"1");
}

TEST(cXML_Node, ChangesTheFirstFoundAndCreatesNoAttributeByItself) {
    cXML_Node node = Wrapped(u"<?xml version='1.0'?><a i='1'><b/><c><b/></c><a/></a>");
    node.setAttrib(u"i", u"2");
    node.setAttrib(u"absent", u"2");
    node.AddAttrib(u"n", u"b", u"<");
    node.SetTag(u"c", u"&");
    node.SetTag(u"absent", u"x");
    node.AddTag(u"x", u"a", u"1");  // here the root comes first
    node.AddTag(u"y", u"b", u"");
    node.AddTag(u"z", u"absent", u"2");
    EXPECT_EQ(node.xml(),
              u"<?xml version='1.0'?><a i=\"2\"><b n=\"&lt;\"><y/></b><c>&amp;</c><a/><x>1</x></a>");
    EXPECT_EQ(Wrapped(u"<?xml version='1.0'?><!--c--><s:iq/>").GetNamespace(), u"s:iq");
}

TEST(cXML_Node, GetNodeIsLiveAndGetNodesAreCopies) {
    cXML_Node node = Wrapped(kIq);
    node.getNode(u"//sub").Text(u"live");
    auto copies = node.getNodes(u"//item");
    ASSERT_EQ(copies->Count(), 2);
    EXPECT_EQ(copies->Item(1)->xml(), u"<item a=\"x\">i1</item>");
    copies->Item(2)->SetTag(u"sub", u"copy");
    EXPECT_EQ(node.GetTag(u"sub") + copies->Item(2)->GetTag(u"sub"), u"livecopy");
}

TEST(cXML_Node, TextThatDoesNotLoadLeavesAnEmptyDocument) {
    cXML_Node node = Wrapped(kIq);
    XmlNode kept = node.getNode(u"//sub");
    node.xml(u"<a><b></a>");
    node.AddTag(u"x", u"a", u"1");
    EXPECT_EQ(node.xml() + node.GetTag(u"item") + node.GetAttrib(u"id") + node.GetNamespace(), u"");
    EXPECT_EQ(node.GetTagInt(u"item") + node.GetTagLng(u"item"), 0);
    EXPECT_FALSE(node.GetTagYesNo(u"item") || node.getNode(u"//item"));
    EXPECT_EQ(kept.Text(), u"s");
}

constexpr std::int32_t kMismatch = 1013, kOverflow = 1006;  // raised error numbers, told from values

template <class Get>
std::int32_t ValueOrError(Get get) {
    try {
        return get();
    } catch (const AutomationError& error) {
        return 1000 + error.Number();
    }
}

TEST(cXML_Node, ConvertsTheTextOfATagOrRaises) {
    struct Conversion {
        StringView text;
        std::int32_t asInt, asLng, asYesNo;
    };
    for (const Conversion& row : {Conversion{u"", 0, 0, 0},
                                  {u" -0 ", 0, 0, 0},
                                  {u"2.5", 2, 2, 1},
                                  {u"3.5", 4, 4, 1},
                                  {u"-32768", -32768, -32768, 1},
                                  {u"-32768.5", 0, -32768, 1},
                                  {u"32767", 32767, 32767, 1},
                                  {u"32767.6", 0, 32768, 1},
                                  {u"3000000000", 0, kOverflow, 1},
                                  {u"40000abc", 0, kMismatch, kMismatch},
                                  {u"5abc", kMismatch, kMismatch, kMismatch},
                                  {u" ", kMismatch, kMismatch, kMismatch},
                                  {u"TRUE", kMismatch, kMismatch, 1},
                                  {u"false", kMismatch, kMismatch, 0}}) {
        cXML_Node node = Wrapped(Concat({u"<a><b>", row.text, u"</b></a>"}));
        EXPECT_EQ(ValueOrError([&] { return node.GetTagInt(u"b"); }), row.asInt) << BytesFromWire(row.text);
        EXPECT_EQ(ValueOrError([&] { return node.GetTagLng(u"b"); }), row.asLng) << BytesFromWire(row.text);
        EXPECT_EQ(ValueOrError([&] { return node.GetTagYesNo(u"b") ? 1 : 0; }), row.asYesNo);
    }
}

}  // namespace

}  // namespace quorix
