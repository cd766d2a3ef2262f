#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class SearchTest : public LoggedIn {
protected:
    Lines Reply(const std::string& content) {
        return Raised("<iq type='result'><query xmlns='jabber:iq:search'>" + content + "</query></iq>");
    }
    static std::string Fields(const cSearchFields& fields) {
        String text;
        for (const auto& field : fields) text += field->FieldName() + u"=" + field->FieldData() + u";";
        return Utf8FromText(text);
    }
    std::shared_ptr<cSearchResult> Hit(std::int32_t index) { return session->Searchresults()->Item(index); }
};

TEST_F(SearchTest, EveryReplyEmptiesTheFieldsAndFillsThemWithItsChildren) {
    EXPECT_EQ(Reply("\n <instructions>Fill in</instructions>\n <nick/><deep><inner/></deep><key>k</key>"),
              (Lines{"OnSearchFields 4", "OnIQ"}));
    EXPECT_EQ(Fields(*session->SearchFields()), "instructions=Fill in;nick=;deep=;key=k;");
    Say("<iq type='error'><query xmlns='jabber:iq:search'><instructions>I</instructions></query></iq>");
    EXPECT_EQ(session->SearchFields()->Count(), 4);
    events->Take();
    EXPECT_EQ(Reply("<nick/>"), Lines{"OnIQ"});
    EXPECT_EQ(session->SearchFields()->Count(), 0);
}

TEST_F(SearchTest, ADataFormGoesToASearchFormThatIsNewEachTime) {
    auto former = session->SearchXData();
    EXPECT_EQ(Reply("<x xmlns='jabber:x:data'><title>T</title><instructions>I</instructions>"
                    "<field type='list-single' label='Sex' var='sex'><required/><value>m</value>"
                    "<value>f</value><option label='Man'><value>m</value></option>"
                    "<option><value>f</value></option><option label='?'/></field><field/></x>"),
              (Lines{"OnSearchFields 0", "OnIQ"}));
    auto form = session->SearchXData();
    EXPECT_NE(form, former);
    EXPECT_EQ(form->Title() + form->Instructions(), u"TI");
    ASSERT_EQ(form->Fields().Count(), 2);
    auto field = form->Fields().Item(1);
    EXPECT_TRUE(field->Required());
    EXPECT_EQ(field->FieldType() + u"/" + field->Label() + u"/" + field->Var() + u"/" + field->Value(),
              u"list-single/Sex/sex/m");
    ASSERT_EQ(field->Options().Count(), 3);
    EXPECT_EQ(field->Options().Item(1)->Label(), u"Man");
    EXPECT_EQ(field->Options().Item(2)->Value(), u"f");
    EXPECT_FALSE(form->Fields().Item(2)->Required());
    Reply("<instructions>2</instructions>");
    EXPECT_EQ(form->Fields().Count(), 2);
    EXPECT_EQ(session->SearchXData()->Fields().Count(), 0);
}

TEST_F(SearchTest, PlainHitsAreDecodedAndThoseOfADataFormStayAsReceived) {
    EXPECT_EQ(Reply("<item jid='a@b'><first>Jörg</first><iq>-</iq><query>-</query></item>"
                    "<item><last>&amp;lt;</last></item>"),
              (Lines{"OnSearchResults 2", "OnIQ"}));
    EXPECT_EQ(Hit(1)->SearchItem(), u"a@b");
    EXPECT_EQ(Fields(*Hit(1)->Fields()), "first=Jörg;");
    EXPECT_EQ(Hit(2)->SearchItem(), u"");
    EXPECT_EQ(Fields(*Hit(2)->Fields()), "last=<;");
    EXPECT_EQ(Reply("<x xmlns='jabber:x:data'><reported><field var='jid'/></reported>"
                    "<item><field var='fn'><value>ö</value></field>"
                    "<field var='jid'><value>a@b</value></field><field/></item>"
                    "<item><field var='fn'/></item></x>"),
              (Lines{"OnSearchResults 2", "OnIQ"}));
    EXPECT_EQ(Hit(1)->SearchItem(), u"a@b");
    EXPECT_EQ(Fields(*Hit(1)->Fields()), "fn=\xc3\x83\xc2\xb6;=;");
    EXPECT_EQ(Hit(2)->SearchItem(), u"");
}

TEST_F(SearchTest, ResultsThatAnApplicationKeptStayUntilTheConnectionEnds) {
    Reply("<item jid='1'><a>x</a></item>");
    auto kept = session->Searchresults();
    Reply("<item jid='2'><a>x</a></item><item jid='3'/>");
    auto current = session->Searchresults();
    session->Disconnect();
    EXPECT_EQ(kept->Count(), 1);
    EXPECT_EQ(current->Count(), 0);
    EXPECT_EQ(session->Searchresults(), current);
}

TEST_F(SearchTest, HitsInThousandsOrInsideHitsAreAllThereAndDoNotMultiplyTheirText) {
    std::string open, close, items;
    for (int i = 0; i < 5000; ++i) items += "<item><a>x</a></item>";
    EXPECT_EQ(Reply(items), (Lines{"OnSearchResults 5000", "OnIQ"}));
    for (int i = 0; i < 400; ++i) {
        open += "<item><a>";
        close += "</a></item>";
    }
    EXPECT_EQ(Reply("<x><item><b>1</b></item></x>" + open + std::string(1000, 'x') + close +
                    "<y><item><b>2</b></item></y>"),
              (Lines{"OnSearchResults 3", "OnIQ"}));
    EXPECT_EQ(Hit(2)->Fields()->Item(1)->FieldData().size(), 1000U);
}

}  // namespace
}  // namespace quorix
