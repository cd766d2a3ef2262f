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
    writer.setRootElement(u"other", u"", u"");  // takes the place of the first
    EXPECT_EQ(writer.xml(), u"<?xml version='1.0'?><other/>");
}

TEST(cXML_Writer, RaisesWhatCannotBeBuilt) {
    cXML_Writer writer;
    EXPECT_EQ(ErrorOf([&] { writer.setAttrib(u"a", u"1"); }), 91);
    writer.setNode(u"c", u"");
    EXPECT_EQ(ErrorOf([&] { writer.addNode(); }), 91);
    EXPECT_EQ(ErrorOf([&] { writer.setNode(u"no name", u""); }), 5);
    EXPECT_EQ(writer.xml(), u"");
}

}  // namespace

}  // namespace quorix
