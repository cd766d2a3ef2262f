#include "quorix/xml/cXML_Node.h"

#include <gtest/gtest.h>

#include "quorix/base/AutomationError.h"

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

TEST(cXML_Node, TagSearchComparesAllChildrenBeforeGoingDeeperAndNeverTheRoot) {
    cXML_Node node = Wrapped(kIq);
    EXPECT_EQ(node.GetTag(u"item"), u"i2s");
    EXPECT_EQ(node.GetTag(u"sub"), u"s");
    EXPECT_TRUE(node.TagExists(u"query") && node.FindTag(u"sub"));
    EXPECT_FALSE(node.TagExists(u"iq") || node.FindTag(u"Item") || node.TagExists(u"#text"));
    EXPECT_EQ(node.GetTag(u"absent"), u"");
}

TEST(cXML_Node, AttributeSearchBeginsWithTheRootAndFollowsTheDocument) {
    cXML_Node node = Wrapped(kIq);
    EXPECT_EQ(node.GetAttrib(u"id"), u"1");
    EXPECT_EQ(node.GetAttrib(u"a"), u"x");
    EXPECT_EQ(node.GetAttrib(u"b"), u"z");
    EXPECT_EQ(node.GetAttrib(u"xmlns"), u"q");
    EXPECT_TRUE(node.FindAttrib(u"b"));
    EXPECT_FALSE(node.FindAttrib(u"c"));
    EXPECT_EQ(node.GetAttrib(u"c"), u"");
}

TEST(cXML_Node, SearchesOnlyTheGivenNodes) {
    cXML_Node node = Wrapped(kIq);
    cXML_Node::Nodes query = {node.getNode(u"//query")};
    EXPECT_EQ(node.GetTag(u"item", query), u"i1");
    EXPECT_FALSE(node.TagExists(u"sub", query) || node.FindTag(u"query", query));
    EXPECT_EQ(node.GetAttrib(u"id", query), u"2");
    EXPECT_FALSE(node.FindAttrib(u"b", query));
    EXPECT_FALSE(node.TagExists(u"item", {XmlNode()}));

    node.SetTag(u"item", u"new", query);
    node.AddTag(u"t", u"item", u"", query);
    node.AddAttrib(u"n", u"item", u"1", query);
    node.setAttrib(u"id", u"3", query);
    EXPECT_EQ(query[0].Xml(), u"<query id=\"3\" xmlns=\"q\"><item a=\"x\" n=\"1\">new<t/></item></query>");
    EXPECT_EQ(node.GetAttrib(u"id"), u"1");
}

TEST(cXML_Node, ChangesTheFirstFoundAndCreatesNoAttributeByItself) {
    cXML_Node node = Wrapped(u"<a i='1'><b/><c><b/></c></a>");
    node.setAttrib(u"i", u"2");
    node.setAttrib(u"absent", u"2");
    node.AddAttrib(u"n", u"b", u"<");
    node.AddAttrib(u"n", u"a", u"the root has no tag");
    node.SetTag(u"c", u"&");
    node.SetTag(u"absent", u"x");
    EXPECT_EQ(node.xml(), u"<a i=\"2\"><b n=\"&lt;\"/><c>&amp;</c></a>");
}

TEST(cXML_Node, AddTagPrefersTheRootAndElseTakesTheFirstFound) {
    cXML_Node node = Wrapped(u"<?xml version='1.0'?><a><c/><a/></a>");
    node.AddTag(u"x", u"a", u"1");
    node.AddTag(u"y", u"c", u"");
    node.AddTag(u"z", u"absent", u"2");
    EXPECT_EQ(node.xml(), u"<?xml version='1.0'?><a><c><y/></c><a/><x>1</x></a>");
    EXPECT_THROW(node.AddTag(u"no name", u"c", u""), AutomationError);

    cXML_Node empty;
    empty.AddTag(u"x", u"a", u"1");
    EXPECT_EQ(empty.xml(), u"");
}

TEST(cXML_Node, GetNamespaceIsTheRootsName) {
    EXPECT_EQ(Wrapped(u"<?xml version='1.0'?><!--c--><s:iq/>").GetNamespace(), u"s:iq");
    EXPECT_EQ(cXML_Node().GetNamespace(), u"");
    EXPECT_EQ(Wrapped(u"<cut").GetNamespace(), u"");
}

TEST(cXML_Node, GetNodeIsLiveAndGetNodesAreCopies) {
    cXML_Node node = Wrapped(kIq);
    node.getNode(u"//sub").Text(u"live");
    EXPECT_EQ(node.GetTag(u"sub"), u"live");
    EXPECT_FALSE(node.getNode(u"//absent"));

    auto copies = node.getNodes(u"//item");
    ASSERT_EQ(copies->Count(), 2);
    EXPECT_EQ(copies->Item(1)->xml(), u"<item a=\"x\">i1</item>");
    copies->Item(2)->SetTag(u"sub", u"copy");
    EXPECT_EQ(copies->Item(2)->GetTag(u"sub"), u"copy");
    EXPECT_EQ(node.GetTag(u"sub"), u"live");
    EXPECT_EQ(node.getNodes(u"//absent")->Count(), 0);
    EXPECT_THROW(node.getNodes(u"//["), AutomationError);
}

TEST(cXML_Node, TextThatDoesNotLoadLeavesAnEmptyDocument) {
    cXML_Node node = Wrapped(kIq);
    XmlNode kept = node.getNode(u"//sub");
    node.xml(u"<a><b></a>");
    EXPECT_EQ(node.xml() + node.GetTag(u"item") + node.GetAttrib(u"id"), u"");
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

struct Conversion {
    const char16_t* text;
    std::int32_t asInt, asLng, asYesNo;
};

class TagConversion : public ::testing::TestWithParam<Conversion> {};

TEST_P(TagConversion, ConvertsOrRaises) {
    cXML_Node node = Wrapped(Concat({u"<a><b>", GetParam().text, u"</b></a>"}));
    EXPECT_EQ(ValueOrError([&] { return node.GetTagInt(u"b"); }), GetParam().asInt);
    EXPECT_EQ(ValueOrError([&] { return node.GetTagLng(u"b"); }), GetParam().asLng);
    EXPECT_EQ(ValueOrError([&] { return node.GetTagYesNo(u"b") ? 1 : 0; }), GetParam().asYesNo);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, TagConversion,
    ::testing::Values(
        Conversion{u"", 0, 0, 0}, Conversion{u"42", 42, 42, 1}, Conversion{u" -0 ", 0, 0, 0},
        Conversion{u"2.5", 2, 2, 1}, Conversion{u"3.5", 4, 4, 1}, Conversion{u"-32768", -32768, -32768, 1},
        Conversion{u"-32768.5", 0, -32768, 1}, Conversion{u"32767", 32767, 32767, 1},
        Conversion{u"32767.6", 0, 32768, 1}, Conversion{u"40000", 0, 40000, 1},
        Conversion{u"3000000000", 0, kOverflow, 1}, Conversion{u"5abc", kMismatch, kMismatch, kMismatch},
        Conversion{u"40000abc", 0, kMismatch, kMismatch}, Conversion{u"abc", kMismatch, kMismatch, kMismatch},
        Conversion{u" ", kMismatch, kMismatch, kMismatch}, Conversion{u"TRUE", kMismatch, kMismatch, 1},
        Conversion{u"false", kMismatch, kMismatch, 0}));

TEST(cXML_Node, MissingFileLeavesAnEmptyDocument) {
    cXML_Node node = Wrapped(u"<a/>");
    node.LoadXML_FromFile(u"/nonexistent/file.xml");
    EXPECT_EQ(node.xml(), u"");
    node.xml(u"<a/>");
    node.LoadXML_FromFile(u"/");
    EXPECT_EQ(node.xml(), u"");
}

}  // namespace

}  // namespace quorix
