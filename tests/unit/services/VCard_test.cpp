#include "quorix/services/VCard.h"

#include <ctime>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

std::shared_ptr<cVcard> CardOf(StringView content) {
    return ReadVCard(ClassicText(), ParsedXml::FromText(Concat({u"<vCard>", content, u"</vCard>"}))->Root());
}

// Each element holds its number.
const std::string kNumbered =
    "<FN>ö &amp; 1</FN><N><FAMILY>2</FAMILY><GIVEN>3</GIVEN><MIDDLE>4</MIDDLE></N><NICKNAME>5</NICKNAME>"
    "<URL>6</URL><BDAY>7</BDAY><ORG><ORGNAME>8</ORGNAME><ORGUNIT>9</ORGUNIT></ORG><TITLE>10</TITLE>"
    "<ROLE>11</ROLE><TEL><VOICE/><HOME/><NUMBER>12</NUMBER></TEL><TEL><FAX/><HOME/><NUMBER>13</NUMBER></TEL>"
    "<TEL><MSG/><HOME/><NUMBER>14</NUMBER></TEL>"
    "<ADR><HOME/><EXTADD>15</EXTADD><STREET>16</STREET><LOCALITY>17</LOCALITY><REGION>18</REGION>"
    "<PCODE>19</PCODE><COUNTRY>20</COUNTRY></ADR>"
    "<TEL><VOICE/><WORK/><NUMBER>21</NUMBER></TEL><TEL><FAX/><WORK/><NUMBER>22</NUMBER></TEL>"
    "<TEL><MSG/><WORK/><NUMBER>23</NUMBER></TEL>"
    "<ADR><WORK/><EXTADD>24</EXTADD><STREET>25</STREET><LOCALITY>26</LOCALITY><REGION>27</REGION>"
    "<PCODE>28</PCODE><COUNTRY>29</COUNTRY></ADR>"
    "<EMAIL><INTERNET/><PREF/><USERID>30</USERID></EMAIL><JABBERID>31</JABBERID><DESC></DESC>";

TEST_F(LoggedIn, ReadsEveryPropertyOfACardAndPublishesAllButTwo) {
    for (const std::string root : {"VCARD", "vCard"}) {
        EXPECT_EQ(Raised("<iq type='result' from='a'><" + root + " xmlns='vcard-temp'>" + kNumbered + "</" +
                         root + "></iq>"),
                  (Lines{"OnVCardResult a iq", "OnIQ"}));
        const cVcard& c = *events->vcard;
        EXPECT_EQ(c.FullName() + c.LastName() + c.FirstName() + c.MiddleName() + c.NickName() + c.WebPage() +
                      c.BirthDate() + c.OrgName() + c.OrgUnit() + c.Title() + c.Role() + c.HomePhone() +
                      c.HomeFax() + c.HomeMessage() + c.HomeExtAddress() + c.HomeStreet() + c.HomeCity() +
                      c.HomeRegion() + c.HomePostalCode() + c.HomeCountry() + c.BusinessPhone() +
                      c.BusinessFax() + c.BusinessMessage() + c.BusinessExtAddress() + c.BusinessStreet() +
                      c.BusinessCity() + c.BusinessRegion() + c.BusinessPostalCode() + c.BusinessCountry() +
                      c.Email() + c.JabberID() + c.Description(),
                  u"\u00f6 & 12345678910111213141516171819202122232425262728293031");
    }
    session->UpdateVcard(events->vcard);
    std::string published = kNumbered;
    for (const std::string kept : {">4</MIDDLE>", ">15</EXTADD>"})
        published.replace(published.find(kept), kept.size(), "/>");
    EXPECT_EQ(Heard(), "<iq type='set' id='KV_2'><vCard xmlns='vcard-temp'>" + published + "</vCard></iq>");
}

TEST(VCard, EachFormOfAnElementFillsItsProperty) {
    const std::tuple<StringView, String (cVcard::*)() const, StringView> cases[] = {
        {u"<N><MIDDLE>Q</MIDDLE></N>", &cVcard::MiddleName, u"Q"},
        {u"<ADR><HOME/><EXTADD>x</EXTADD></ADR>", &cVcard::HomeExtAddress, u"x"},
        {u"<ADR><CTRY>D</CTRY><WORK/></ADR>", &cVcard::BusinessCountry, u"D"},
        {u"<ADR><CTRY>D</CTRY><COUNTRY>F</COUNTRY></ADR>", &cVcard::HomeCountry, u"F"},
        {u"<TEL><NUMBER>1</NUMBER><WORK/></TEL>", &cVcard::BusinessPhone, u"1"},
        {u"<TEL><NUMBER>1</NUMBER><WORK/><HOME/></TEL>", &cVcard::HomePhone, u"1"},
        {u"<TEL><FAX/><NUMBER>1</NUMBER></TEL>", &cVcard::HomeFax, u"1"},
        {u"<TEL><MSG/><WORK/><NUMBER>1</NUMBER></TEL>", &cVcard::BusinessMessage, u"1"},
        {u"<TEL><HOME/><CELL/><NUMBER>1</NUMBER></TEL>", &cVcard::HomePhone, u""},
        {u"<TEL><NUMBER/></TEL><TEL><NUMBER>2</NUMBER></TEL><TEL><NUMBER>3</NUMBER></TEL>",
         &cVcard::HomePhone, u"2"},
        {u"<EMAIL>a@b</EMAIL>", &cVcard::Email, u"a@b"},
        {u"<EMAIL><HOME/><USERID>c@d</USERID>x</EMAIL>", &cVcard::Email, u"c@d"},
        {u"<FN>\u00c3\u00b6 &amp;amp;</FN>", &cVcard::FullName, u"\u00f6 &"},
        {u"<x><FN>no</FN></x>", &cVcard::FullName, u""}};
    for (const auto& [xml, get, value] : cases)
        EXPECT_EQ(((*CardOf(xml)).*get)(), value) << Utf8FromText(xml);
}

TEST(VCard, ALongTextIsReadOnceHoweverOftenItsElementComesAgain) {
    String again;
    for (int i = 0; i < 60'000; ++i) again += u"<DESC>no</DESC>";
    String content = Concat({u"<DESC>", String(2'000'000, u'x'), u"</DESC>", again});
    std::clock_t begin = std::clock();
    EXPECT_EQ(CardOf(content)->Description().size(), 2'000'000U);
    EXPECT_LT(std::clock() - begin, 2 * CLOCKS_PER_SEC) << "a copy for each element takes ten times as long";
}

TEST(VCard, APhotoOfFiveMegabytesIsPassedOver) {
    String photo(5'000'000, u'A');
    EXPECT_EQ(CardOf(Concat({u"<PHOTO><BINVAL>", photo, u"</BINVAL></PHOTO><DESC>D</DESC>"}))->Description(),
              u"D");
}

}  // namespace
}  // namespace quorix
