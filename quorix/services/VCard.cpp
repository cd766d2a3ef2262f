#include "quorix/services/VCard.h"

#include <algorithm>
#include <vector>

#include "quorix/link/StanzaText.h"

namespace quorix {

namespace {

using Getter = String (cVcard::*)() const;
using Setter = void (cVcard::*)(StringView);

// -- Publishing --

struct Piece {
    StringView before;
    Getter value;
    StringView after;
};

// The whole card in its order. The middle name and the home's extended address are always written empty.
constexpr Piece kUpdate[] = {
    {u"<FN>", &cVcard::FullName, u"</FN>"},
    {u"<N><FAMILY>", &cVcard::LastName, u"</FAMILY>"},
    {u"<GIVEN>", &cVcard::FirstName, u"</GIVEN><MIDDLE/></N>"},
    {u"<NICKNAME>", &cVcard::NickName, u"</NICKNAME>"},
    {u"<URL>", &cVcard::WebPage, u"</URL>"},
    {u"<BDAY>", &cVcard::BirthDate, u"</BDAY>"},
    {u"<ORG><ORGNAME>", &cVcard::OrgName, u"</ORGNAME>"},
    {u"<ORGUNIT>", &cVcard::OrgUnit, u"</ORGUNIT></ORG>"},
    {u"<TITLE>", &cVcard::Title, u"</TITLE>"},
    {u"<ROLE>", &cVcard::Role, u"</ROLE>"},
    {u"<TEL><VOICE/><HOME/><NUMBER>", &cVcard::HomePhone, u"</NUMBER></TEL>"},
    {u"<TEL><FAX/><HOME/><NUMBER>", &cVcard::HomeFax, u"</NUMBER></TEL>"},
    {u"<TEL><MSG/><HOME/><NUMBER>", &cVcard::HomeMessage, u"</NUMBER></TEL>"},
    {u"<ADR><HOME/><EXTADD/><STREET>", &cVcard::HomeStreet, u"</STREET>"},
    {u"<LOCALITY>", &cVcard::HomeCity, u"</LOCALITY>"},
    {u"<REGION>", &cVcard::HomeRegion, u"</REGION>"},
    {u"<PCODE>", &cVcard::HomePostalCode, u"</PCODE>"},
    {u"<COUNTRY>", &cVcard::HomeCountry, u"</COUNTRY></ADR>"},
    {u"<TEL><VOICE/><WORK/><NUMBER>", &cVcard::BusinessPhone, u"</NUMBER></TEL>"},
    {u"<TEL><FAX/><WORK/><NUMBER>", &cVcard::BusinessFax, u"</NUMBER></TEL>"},
    {u"<TEL><MSG/><WORK/><NUMBER>", &cVcard::BusinessMessage, u"</NUMBER></TEL>"},
    {u"<ADR><WORK/><EXTADD>", &cVcard::BusinessExtAddress, u"</EXTADD>"},
    {u"<STREET>", &cVcard::BusinessStreet, u"</STREET>"},
    {u"<LOCALITY>", &cVcard::BusinessCity, u"</LOCALITY>"},
    {u"<REGION>", &cVcard::BusinessRegion, u"</REGION>"},
    {u"<PCODE>", &cVcard::BusinessPostalCode, u"</PCODE>"},
    {u"<COUNTRY>", &cVcard::BusinessCountry, u"</COUNTRY></ADR>"},
    {u"<EMAIL><INTERNET/><PREF/><USERID>", &cVcard::Email, u"</USERID></EMAIL>"},
    {u"<JABBERID>", &cVcard::JabberID, u"</JABBERID>"},
    {u"<DESC>", &cVcard::Description, u"</DESC>"},
};

String UpdateBody(const TextRules& rules, const cVcard& card) {
    String body;
    for (const Piece& piece : kUpdate) {
        Extend(body, rules,
               {Markup(piece.before), Content((card.*piece.value)(), Put::Escaped), Markup(piece.after)});
    }
    return body;
}

// -- Reading --

// An element by its name, or by its name and that of its parent.
struct Path {
    StringView element;
    StringView child;
    Setter property;
};

constexpr Path kPaths[] = {
    {u"FN", u"", &cVcard::FullName},        {u"N", u"FAMILY", &cVcard::LastName},
    {u"N", u"GIVEN", &cVcard::FirstName},   {u"N", u"MIDDLE", &cVcard::MiddleName},
    {u"NICKNAME", u"", &cVcard::NickName},  {u"URL", u"", &cVcard::WebPage},
    {u"BDAY", u"", &cVcard::BirthDate},     {u"ORG", u"ORGNAME", &cVcard::OrgName},
    {u"ORG", u"ORGUNIT", &cVcard::OrgUnit}, {u"TITLE", u"", &cVcard::Title},
    {u"ROLE", u"", &cVcard::Role},          {u"JABBERID", u"", &cVcard::JabberID},
    {u"DESC", u"", &cVcard::Description},
};

struct Numbers {
    Setter phone, fax, message;
};

constexpr Numbers kHomeNumbers{&cVcard::HomePhone, &cVcard::HomeFax, &cVcard::HomeMessage};
constexpr Numbers kWorkNumbers{&cVcard::BusinessPhone, &cVcard::BusinessFax, &cVcard::BusinessMessage};

constexpr StringView kOtherKinds[] = {u"PAGER", u"CELL", u"VIDEO", u"BBS", u"MODEM", u"ISDN", u"PCS"};

struct Place {
    Setter extended, street, city, region, postalCode, country;
};

constexpr Place kHome{&cVcard::HomeExtAddress, &cVcard::HomeStreet,     &cVcard::HomeCity,
                      &cVcard::HomeRegion,     &cVcard::HomePostalCode, &cVcard::HomeCountry};
constexpr Place kWork{&cVcard::BusinessExtAddress, &cVcard::BusinessStreet,     &cVcard::BusinessCity,
                      &cVcard::BusinessRegion,     &cVcard::BusinessPostalCode, &cVcard::BusinessCountry};

void Fill(const TextRules& rules, cVcard& card, Setter property, const ParsedNode& element) {
    String text = element.Text();
    if (!text.empty()) (card.*property)(rules.Read(text));
}

bool Has(const ParsedNode& element, StringView marker) { return static_cast<bool>(element.Child(marker)); }
bool IsWork(const ParsedNode& element) { return Has(element, u"WORK") && !Has(element, u"HOME"); }

// Null for a number of a kind that a card has no property for.
Setter NumberProperty(const ParsedNode& number) {
    const Numbers& numbers = IsWork(number) ? kWorkNumbers : kHomeNumbers;
    if (Has(number, u"VOICE")) return numbers.phone;
    if (Has(number, u"FAX")) return numbers.fax;
    if (Has(number, u"MSG")) return numbers.message;
    bool other = std::any_of(std::begin(kOtherKinds), std::end(kOtherKinds),
                             [&](StringView kind) { return Has(number, kind); });
    return other ? nullptr : numbers.phone;
}

void ReadNumber(const TextRules& rules, cVcard& card, const ParsedNode& element) {
    Setter property = NumberProperty(element);
    if (property) Fill(rules, card, property, element.Child(u"NUMBER"));
}

void ReadAddress(const TextRules& rules, cVcard& card, const ParsedNode& element) {
    const Place& place = IsWork(element) ? kWork : kHome;
    Fill(rules, card, place.extended, element.Child(u"EXTADD"));
    Fill(rules, card, place.street, element.Child(u"STREET"));
    Fill(rules, card, place.city, element.Child(u"LOCALITY"));
    Fill(rules, card, place.region, element.Child(u"REGION"));
    Fill(rules, card, place.postalCode, element.Child(u"PCODE"));
    Fill(rules, card, place.country, element.Child(u"CTRY"));
    Fill(rules, card, place.country, element.Child(u"COUNTRY"));
}

void ReadEmail(const TextRules& rules, cVcard& card, const ParsedNode& element) {
    ParsedNode user = element.Child(u"USERID");
    Fill(rules, card, &cVcard::Email, user ? user : element);
}

void ReadElement(const TextRules& rules, cVcard& card, const ParsedNode& element) {
    if (element.Is(u"TEL")) return ReadNumber(rules, card, element);
    if (element.Is(u"ADR")) return ReadAddress(rules, card, element);
    if (element.Is(u"EMAIL")) return ReadEmail(rules, card, element);
    for (const Path& path : kPaths) {
        if (!element.Is(path.element)) continue;
        Fill(rules, card, path.property, path.child.empty() ? element : element.Child(path.child));
    }
}

}  // namespace

void SendVCardRequest(SessionLink& link, StringView jid) {
    link.SendXML(Compose(link.Text(), {u"<iq type='get' id='", Quoted(link.GetNextID()), u"' to='",
                                       Quoted(jid), u"'><VCARD xmlns='vcard-temp'/></iq>"}));
}

void UpdateVcard(SessionLink& link, const std::shared_ptr<cVcard>& card) {
    if (!card) return;
    link.SendXML(Compose(link.Text(),
                         {u"<iq type='set' id='", Quoted(link.GetNextID()), u"'><vCard xmlns='vcard-temp'>",
                          Markup(UpdateBody(link.Text(), *card)), u"</vCard></iq>"}));
}

std::shared_ptr<cVcard> ReadVCard(const TextRules& rules, const ParsedNode& element) {
    auto card = std::make_shared<cVcard>();
    std::vector<ParsedNode> children;
    for (ParsedNode child = element.FirstElement(); child; child = child.NextElement())
        children.push_back(child);
    // From the last, so that the first one that is not empty stays.
    for (auto child = children.rbegin(); child != children.rend(); ++child) ReadElement(rules, *card, *child);
    return card;
}

void HandleVCard(const std::shared_ptr<SessionLink>& link, const Stanza& stanza) {
    ParsedNode element = stanza.Query();
    if (!stanza.IsResult() || !EqualsIgnoringCase(element.Name(), u"VCARD")) return;
    std::shared_ptr<cVcard> card = ReadVCard(link->Text(), element);
    link->Raise(&SessionEvents::OnVCardResult, card, stanza.From(), stanza.Node());
}

}  // namespace quorix
