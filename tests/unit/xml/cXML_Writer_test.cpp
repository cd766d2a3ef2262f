#include "quorix/xml/cXML_Writer.h"

#include <gtest/gtest.h>

#include "tests/unit/ErrorOf.h"

namespace quorix {

namespace {

TEST(cXML_Writer, BuildsInTheUsualOrder) {
    cXML_Writer writer;
    writer.createProcessingInstruction(u"xml", u"version='1.0'");
    writer.setRootElement(u"list", u"owner", u"me & you");
    XmlNode first = writer.setNode(u"item", u"<one>");
    writer.setAttrib(u"n", u"\"1\"");
    EXPECT_TRUE(writer.addNode() == first);
    writer.setNode(u"sub", u"");
    writer.addNode(first);
    writer.setNode(u"never", u"added");
    EXPECT_EQ(writer.xml(),
              u"<?xml version='1.0'?><list owner=\"me &amp; you\"><item "
              u"n=\"&quot;1&quot;\">&lt;one&gt;<sub/></item></list>");
}

TEST(cXML_Writer, SecondRootReplacesTheFirst) {
    cXML_Writer writer;
    writer.setRootElement(u"a", u"no", u"");
    EXPECT_EQ(writer.xml(), u"<a/>");
    writer.setRootElement(u"b", u"", u"x");
    writer.setNode(u"c", u"");
    writer.addNode();
    EXPECT_EQ(writer.xml(), u"<b><c/></b>");
}

TEST(cXML_Writer, RaisesWhatCannotBeBuilt) {
    cXML_Writer writer;
    EXPECT_EQ(ErrorOf([&] { writer.setAttrib(u"a", u"1"); }), 91);
    writer.setNode(u"c", u"");
    EXPECT_EQ(ErrorOf([&] { writer.addNode(); }), 91);
    EXPECT_EQ(ErrorOf([&] { writer.setNode(u"no name", u""); }), 5);
    EXPECT_EQ(ErrorOf([&] { writer.setRootElement(u"<", u"", u""); }), 5);
    EXPECT_EQ(ErrorOf([&] { writer.setRootElement(u"a", u"1", u"x"); }), 5);
    EXPECT_EQ(ErrorOf([&] { writer.createProcessingInstruction(u"", u""); }), 5);
    EXPECT_EQ(ErrorOf([&] { writer.createProcessingInstruction(u"p", u"?>"); }), 5);
    EXPECT_EQ(writer.xml(), u"");
}

TEST(cXML_Writer, GoesOnWithWhatItLoaded) {
    cXML_Writer writer;
    XmlNode item = writer.setNode(u"item", u"");
    writer.xml(u"<loaded><x/></loaded>");
    writer.addNode();
    EXPECT_EQ(writer.xml(), u"<loaded><x/><item/></loaded>");
    EXPECT_TRUE(item.Parent().Is(u"loaded"));
    writer.xml(u"<cut");
    EXPECT_EQ(writer.xml(), u"");
}

}  // namespace

}  // namespace quorix
