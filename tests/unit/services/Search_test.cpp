#include <gtest/gtest.h>

#include "quorix/services/Search.h"
#include "tests/unit/services/FakeLink.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::tests {
namespace {

class SearchTest : public ::testing::Test {
protected:
    Lines Handle(StringView query) {
        search.Handle(link, StanzaOf(Concat({u"<iq type='result'>", query, u"</iq>"})));
        return log->Take();
    }
    static std::string Fields(const cSearchFields& fields) {
        String text;
        for (const auto& field : fields) text += field->FieldName() + u"=" + field->FieldData() + u";";
        return Utf8FromText(text);
    }

    std::shared_ptr<ServiceLog> log = std::make_shared<ServiceLog>();
    FakeLink link{log};
    Search search;
};

TEST_F(SearchTest, TheChildrenOfTheQueryBecomeFields) {
    EXPECT_EQ(Handle(u"<query xmlns='jabber:iq:search'>\n <instructions>Fill in</instructions>\n"
                     u" <nick/><deep><inner/></deep><key>k</key></query>"),
              (Lines{"SearchFields 4"}));
    EXPECT_EQ(Fields(*search.SearchFields()), "instructions=Fill in;nick=;deep=;key=k;");
    EXPECT_EQ(search.SearchXData()->Fields().Count(), 0);
}

TEST_F(SearchTest, ADataFormGoesToTheSearchForm) {
    auto former = search.SearchXData();
    EXPECT_EQ(
        Handle(u"<query xmlns='jabber:iq:search'><x xmlns='jabber:x:data'><title>T</title>"
               u"<instructions>I</instructions>"
               u"<field type='list-single' label='Sex' var='sex'><required/><value>m</value><value>f</value>"
               u"<option label='Man'><value>m</value></option><option><value>f</value></option>"
               u"<option label='?'/></field><field/></x></query>"),
        (Lines{"SearchFields 0"}));
    auto form = search.SearchXData();
    EXPECT_NE(form, former);
    EXPECT_EQ(form->Title(), u"T");
    EXPECT_EQ(form->Instructions(), u"I");
    ASSERT_EQ(form->Fields().Count(), 2);
    auto field = form->Fields().Item(1);
    EXPECT_TRUE(field->Required());
    EXPECT_EQ(field->FieldType() + u"/" + field->Label() + u"/" + field->Var() + u"/" + field->Value(),
              u"list-single/Sex/sex/m");
    ASSERT_EQ(field->Options().Count(), 3);
    EXPECT_EQ(field->Options().Item(1)->Label(), u"Man");
    EXPECT_EQ(field->Options().Item(2)->Value(), u"f");
    EXPECT_EQ(field->Options().Item(3)->Value(), u"");
    EXPECT_FALSE(form->Fields().Item(2)->Required());
    EXPECT_EQ(form->Fields().Item(2)->Var(), u"");
}

TEST_F(SearchTest, AFormOfTheSameSessionIsNewEachTime) {
    Handle(u"<query><instructions>1</instructions><x><field var='a'/></x></query>");
    auto kept = search.SearchXData();
    Handle(u"<query><instructions>2</instructions></query>");
    EXPECT_EQ(kept->Fields().Count(), 1);
    EXPECT_EQ(search.SearchXData()->Fields().Count(), 0);
}

TEST_F(SearchTest, PlainHitsAreDecoded) {
    EXPECT_EQ(
        Handle(u"<query xmlns='jabber:iq:search'><item jid='a@b'><first>J\u00c3\u00b6rg</first><iq>-</iq>"
               u"<query>-</query></item><item><last>&amp;lt;</last></item></query>"),
        (Lines{"SearchResults 2"}));
    auto hits = search.Searchresults();
    EXPECT_EQ(hits->Item(1)->SearchItem(), u"a@b");
    EXPECT_EQ(Fields(*hits->Item(1)->Fields()), "first=J\xc3\xb6rg;");
    EXPECT_EQ(hits->Item(2)->SearchItem(), u"");
    EXPECT_EQ(Fields(*hits->Item(2)->Fields()), "last=<;");
}

TEST_F(SearchTest, HitsOfADataFormStayAsReceived) {
    EXPECT_EQ(Handle(u"<query><x xmlns='jabber:x:data'><reported><field var='jid'/></reported>"
                     u"<item><field var='fn'><value>\u00c3\u00b6</value></field>"
                     u"<field var='jid'><value>a@b</value></field><field/></item>"
                     u"<item><field var='fn'/></item></x></query>"),
              (Lines{"SearchResults 2"}));
    auto hits = search.Searchresults();
    EXPECT_EQ(hits->Item(1)->SearchItem(), u"a@b");
    EXPECT_EQ(Fields(*hits->Item(1)->Fields()), "fn=\xc3\x83\xc2\xb6;=;");
    EXPECT_EQ(hits->Item(2)->SearchItem(), u"");
}

TEST_F(SearchTest, EveryResultEmptiesTheFieldsAndAnErrorDoesNot) {
    Handle(u"<query><instructions>I</instructions></query>");
    search.Handle(link, StanzaOf(u"<iq type='error'><query><instructions>I</instructions></query></iq>"));
    EXPECT_EQ(search.SearchFields()->Count(), 1);
    EXPECT_EQ(Handle(u"<query><nick/></query>"), Lines{});
    EXPECT_EQ(search.SearchFields()->Count(), 0);
}

TEST_F(SearchTest, ResultsThatAnApplicationKeptStayUntilTheConnectionEnds) {
    Handle(u"<query><item jid='1'><a>x</a></item></query>");
    auto kept = search.Searchresults();
    Handle(u"<query><item jid='2'><a>x</a></item><item jid='3'/></query>");
    EXPECT_EQ(kept->Count(), 1);
    auto current = search.Searchresults();
    search.Empty();
    EXPECT_EQ(kept->Count(), 1);
    EXPECT_EQ(current->Count(), 0);
    EXPECT_EQ(search.Searchresults(), current);
}

TEST_F(SearchTest, ThousandsOfHitsWithoutAnAddressAreAllThere) {
    String items;
    for (int i = 0; i < 5000; ++i) items += u"<item><a>x</a></item>";
    EXPECT_EQ(Handle(Concat({u"<query>", items, u"</query>"})), (Lines{"SearchResults 5000"}));
    EXPECT_EQ(search.Searchresults()->Item(5000)->SearchItem(), u"");
}

TEST_F(SearchTest, HitsInsideHitsDoNotMultiplyTheirText) {
    String open, close;
    for (int i = 0; i < 400; ++i) {
        open += u"<item><a>";
        close += u"</a></item>";
    }
    String text(1000, u'x');
    EXPECT_EQ(Handle(Concat({u"<query><x><item><b>1</b></item></x>", open, text, close,
                             u"<y><item><b>2</b></item></y></query>"})),
              (Lines{"SearchResults 3"}));
    EXPECT_EQ(search.Searchresults()->Item(2)->Fields()->Item(1)->FieldData().size(), 1000U);
}

TEST_F(SearchTest, AKeyIsUsedUnlessItIsEmpty) {
    cSearchFields fields;
    fields.Add(u"a", u"1", u"k");
    fields.Add(u"b", u"2", u"");
    fields.Add(u"c", u"3", u"");
    EXPECT_THROW(fields.Add(u"d", u"4", u"k"), AutomationError);
    EXPECT_EQ(fields.Item(u"k")->FieldData(), u"1");
    fields.Remove(u"k");
    fields.Remove(1);
    EXPECT_EQ(Fields(fields), "c=3;");
    cSearchResults results;
    auto hit = results.Add(u"j", u"k");
    EXPECT_EQ(results.Item(u"k"), hit);
    results.Add(u"j", u"");
    results.Remove(u"k");
    EXPECT_EQ(results.Count(), 1);
    EXPECT_THROW(results.Item(u""), AutomationError);
}

}  // namespace
}  // namespace quorix::tests
