#include <gtest/gtest.h>

#include <ctime>

#include "quorix/services/VCard.h"
#include "tests/unit/services/FakeLink.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::tests {
namespace {

using Setter = void (cVcard::*)(StringView);

constexpr Setter kProperties[] = {
    &cVcard::FullName,
    &cVcard::LastName,
    &cVcard::FirstName,
    &cVcard::MiddleName,
    &cVcard::NickName,
    &cVcard::WebPage,
    &cVcard::BirthDate,
    &cVcard::OrgName,
    &cVcard::OrgUnit,
    &cVcard::Title,
    &cVcard::Role,
    &cVcard::HomePhone,
    &cVcard::HomeFax,
    &cVcard::HomeMessage,
    &cVcard::HomeExtAddress,
    &cVcard::HomeStreet,
    &cVcard::HomeCity,
    &cVcard::HomeRegion,
    &cVcard::HomePostalCode,
    &cVcard::HomeCountry,
    &cVcard::BusinessPhone,
    &cVcard::BusinessFax,
    &cVcard::BusinessMessage,
    &cVcard::BusinessExtAddress,
    &cVcard::BusinessStreet,
    &cVcard::BusinessCity,
    &cVcard::BusinessRegion,
    &cVcard::BusinessPostalCode,
    &cVcard::BusinessCountry,
    &cVcard::Email,
    &cVcard::JabberID,
    &cVcard::Description,
};

// Every property holds its own number, from 1.
std::shared_ptr<cVcard> NumberedCard() {
    auto card = std::make_shared<cVcard>();
    int number = 0;
    for (Setter set : kProperties) ((*card).*set)(ToString(++number));
    return card;
}

TEST(VCard, PublishesEveryPropertyButTwoInItsOrder) {
    FakeLink link;
    UpdateVcard(link, NumberedCard());
    EXPECT_EQ(
        link.TakeSent(),
        "<iq type='set' id='KV_1'><vCard xmlns='vcard-temp'>"
        "<FN>1</FN><N><FAMILY>2</FAMILY><GIVEN>3</GIVEN><MIDDLE/></N><NICKNAME>5</NICKNAME><URL>6</URL>"
        "<BDAY>7</BDAY><ORG><ORGNAME>8</ORGNAME><ORGUNIT>9</ORGUNIT></ORG><TITLE>10</TITLE><ROLE>11</ROLE>"
        "<TEL><VOICE/><HOME/><NUMBER>12</NUMBER></TEL><TEL><FAX/><HOME/><NUMBER>13</NUMBER></TEL>"
        "<TEL><MSG/><HOME/><NUMBER>14</NUMBER></TEL>"
        "<ADR><HOME/><EXTADD/><STREET>16</STREET><LOCALITY>17</LOCALITY><REGION>18</REGION>"
        "<PCODE>19</PCODE><COUNTRY>20</COUNTRY></ADR>"
        "<TEL><VOICE/><WORK/><NUMBER>21</NUMBER></TEL><TEL><FAX/><WORK/><NUMBER>22</NUMBER></TEL>"
        "<TEL><MSG/><WORK/><NUMBER>23</NUMBER></TEL>"
        "<ADR><WORK/><EXTADD>24</EXTADD><STREET>25</STREET><LOCALITY>26</LOCALITY><REGION>27</REGION>"
        "<PCODE>28</PCODE><COUNTRY>29</COUNTRY></ADR>"
        "<EMAIL><INTERNET/><PREF/><USERID>30</USERID></EMAIL><JABBERID>31</JABBERID><DESC>32</DESC>"
        "</vCard></iq>");
}

TEST(VCard, ValuesAreEscapedAndEncodedAndNoCardSendsNothing) {
    FakeLink link;
    UpdateVcard(link, nullptr);
    EXPECT_TRUE(link.sent.empty());
    EXPECT_EQ(link.ids, 0);
    auto card = std::make_shared<cVcard>();
    card->FullName(u"A&B");
    card->Description(u"\u00e9");
    UpdateVcard(link, card);
    std::string sent = link.TakeSent();
    EXPECT_NE(sent.find("<FN>A&amp;B</FN>"), std::string::npos);
    EXPECT_NE(sent.find("<DESC>\xc3\x83\xc2\xa9</DESC>"), std::string::npos);  // two wire characters
    EXPECT_NE(sent.find("<ROLE></ROLE>"), std::string::npos);
    SendVCardRequest(link, u"a@b");
    EXPECT_EQ(link.TakeSent(), "<iq type='get' id='KV_2' to='a@b'><VCARD xmlns='vcard-temp'/></iq>");
}

TEST(VCard, WhatWasPublishedReadsBack) {
    FakeLink link;
    auto sent = NumberedCard();
    sent->FullName(u"J\u00f6rg <&> \u20ac");
    UpdateVcard(link, sent);
    Stanza reply = StanzaOf(TextFromUtf8(link.TakeSent()));
    auto read = ReadVCard(reply.Query());
    sent->MiddleName(u"");
    sent->HomeExtAddress(u"");
    UpdateVcard(link, sent);
    UpdateVcard(link, read);
    EXPECT_EQ(link.sent.size(), 2U);
    link.sent[1].replace(link.sent[1].find("KV_3"), 4, "KV_2");
    EXPECT_EQ(link.sent[0], link.sent[1]);
    EXPECT_EQ(read->FullName(), u"J\u00f6rg <&> \u20ac");
}

TEST(VCard, EachFormOfAnElementFillsItsProperty) {
    const std::tuple<StringView, String (cVcard::*)() const, StringView> cases[] = {
        {u"<N><MIDDLE>Q</MIDDLE></N>", &cVcard::MiddleName, u"Q"},
        {u"<ADR><HOME/><EXTADD>x</EXTADD></ADR>", &cVcard::HomeExtAddress, u"x"},
        {u"<ADR><EXTADD>x</EXTADD></ADR>", &cVcard::HomeExtAddress, u"x"},
        {u"<ADR><CTRY>D</CTRY><WORK/></ADR>", &cVcard::BusinessCountry, u"D"},
        {u"<ADR><CTRY>D</CTRY><COUNTRY>F</COUNTRY></ADR>", &cVcard::HomeCountry, u"F"},
        {u"<TEL><NUMBER>1</NUMBER></TEL>", &cVcard::HomePhone, u"1"},
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
    for (const auto& [xml, get, value] : cases) {
        Stanza stanza = StanzaOf(Concat({u"<vCard>", xml, u"</vCard>"}));
        EXPECT_EQ(((*ReadVCard(stanza.root)).*get)(), value) << Utf8FromText(xml);
    }
}

TEST(VCard, AResultRaisesTheCardUnderAnyCaseOfItsRoot) {
    auto log = std::make_shared<ServiceLog>();
    auto link = std::make_shared<FakeLink>(log);
    for (StringView root : {u"vCard", u"VCARD", u"vcard"}) {
        HandleVCard(link, StanzaOf(Concat({u"<iq type='result' from='a'><", root,
                                           u" xmlns='vcard-temp'><FN>N</FN></", root, u"></iq>"})));
        EXPECT_EQ(log->Take(), (Lines{"VCardResult a iq"}));
        EXPECT_EQ(log->vcard->FullName(), u"N");
    }
    HandleVCard(link, StanzaOf(u"<iq type='error'><vCard xmlns='vcard-temp'/></iq>"));
    HandleVCard(link, StanzaOf(u"<iq type='result'><query xmlns='vcard-temp'/></iq>"));
    EXPECT_EQ(log->Take(), Lines{});
}

TEST(VCard, ALongTextIsReadOnceHoweverOftenItsElementComesAgain) {
    String again;
    for (int i = 0; i < 60'000; ++i) again += u"<DESC>no</DESC>";
    Stanza stanza =
        StanzaOf(Concat({u"<vCard><DESC>", String(2'000'000, u'x'), u"</DESC>", again, u"</vCard>"}));
    std::clock_t begin = std::clock();
    EXPECT_EQ(ReadVCard(stanza.root)->Description().size(), 2'000'000U);
    EXPECT_LT(std::clock() - begin, 2 * CLOCKS_PER_SEC) << "a copy for each element takes ten times as long";
}

TEST(VCard, APhotoOfFiveMegabytesIsPassedOver) {
    String photo(5'000'000, u'A');
    Stanza stanza = StanzaOf(
        Concat({u"<vCard><FN>N</FN><PHOTO><BINVAL>", photo, u"</BINVAL></PHOTO><DESC>D</DESC></vCard>"}));
    EXPECT_EQ(ReadVCard(stanza.root)->Description(), u"D");
}

}  // namespace
}  // namespace quorix::tests
