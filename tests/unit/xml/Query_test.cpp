// XPath over names as written.
#include <gtest/gtest.h>

#include "quorix/xml/XmlDocument.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {

namespace {

const char16_t* const kSource =
    u"<?xml version='1.0'?><iq xmlns='jabber:client' type='set' xml:lang='en'>"
    u"<query xmlns='jabber:x:roster'><item jid='a:b'>1</item><item jid='c'>2</item></query>"
    u"<s:query id='7'><s:item>3</s:item><item>4</item><s:item>5</s:item></s:query></iq>";

TEST(XmlQuery, FindsNamesAsWritten) {
    struct Query {
        const char16_t* xpath;
        const char16_t* found;  // the texts, in order
    };
    auto document = XmlDocument::Create();
    ASSERT_TRUE(document->Load(kSource));
    for (const Query& query : {Query{u"iq/query/item[2]", u"2 "},
                               {u"//query[@xmlns='jabber:x:roster']/item[@jid='a:b']", u"1 "},
                               {u"item", u""},
                               {u"//item | //@id", u"1 2 7 4 "},
                               {u"/", u"12345 "},
                               {u"/iq/s:query/s:item[2]", u"5 "},
                               {u"//s:query/item", u"4 "},
                               {u"//s:*", u"345 3 5 "},
                               {u"/iq/@xml:lang", u"en "},
                               {u"//x:item", u""},
                               {u"//item[.=\"s:item\" or @jid='s:item']", u""}}) {
        String texts;
        for (const XmlNode& node : document->Select(query.xpath)) texts += node.Text() + u" ";
        EXPECT_EQ(texts, query.found) << ::testing::PrintToString(query.xpath);
    }
}

TEST(XmlQueryScope, IsTheNodeAndForAbsolutePathsItsDocument) {
    auto document = XmlDocument::Create();
    ASSERT_TRUE(document->Load(kSource));
    XmlNode query = document->Root().FirstElement();
    EXPECT_EQ(query.Select(u"item").size(), 2U);
    EXPECT_EQ(query.Select(u"//item").size(), 3U);
    auto own = XmlDocument::Create();
    own->Root(query);
    EXPECT_EQ(query.Select(u"//item").size(), 2U);
    EXPECT_EQ(document->Select(u"//item").size(), 1U);
}

TEST(XmlQueryError, IsFiveForWhatSelectsNoNodes) {
    auto document = XmlDocument::Create();
    ASSERT_TRUE(document->Load(kSource));
    String deep(100000, u'(');
    for (StringView xpath : {u"", u"//item[", u"count(//item)", u"f:unknown()", u"$v", deep.c_str()}) {
        EXPECT_EQ(ErrorOf([&] { document->Select(xpath); }), 5) << ::testing::PrintToString(xpath);
    }
    EXPECT_EQ(document->Select(u"//item").size(), 3U);
}

}  // namespace

}  // namespace quorix
