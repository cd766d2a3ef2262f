#include "quorix/services/cAgentItem.h"
#include "quorix/base/CollectionElements.h"

#include <algorithm>
#include <array>
#include <utility>

#include "quorix/base/Number.h"
#include "quorix/link/StanzaText.h"
#include "quorix/services/PositionWhere.h"
#include "quorix/services/Query.h"
#include "quorix/xml/XmlName.h"

namespace quorix {

template class Collection<std::shared_ptr<cAgentItem>>;
template class Collection<std::shared_ptr<cAgentField>>;
template class Collection<std::shared_ptr<cAgentAttrib>>;

namespace {

constexpr std::array<StringView, 4> kNotRegistered{u"register", u"search", u"instructions", u"service"};

template <class Item>
std::shared_ptr<Item> AddNamed(Collection<std::shared_ptr<Item>>& items, StringView name, StringView value) {
    auto item = std::make_shared<Item>();
    item->Name(name);
    item->Value(value);
    items.Add(item, name);
    return item;
}

template <class Items>
std::int16_t FindNamed(const Items& items, StringView name) {
    return ToInt16(PositionWhere(items, [&](const auto& item) { return item->Name() == name; }));
}

// What goes out is the serialized form of the text.
void SendNormalized(SessionLink& link, StringView xml) {
    auto document = XmlDocument::Create();
    link.SendXML(document->Load(xml) ? document->Xml() : String(xml));
}

// Nothing for a name that cannot be a tag.
void AppendField(String& body, const TextRules& rules, StringView name, StringView value) {
    if (IsXmlName(rules.ToBytes(name))) body += Element(rules, name, value);
}

String RegistrationBody(const TextRules& rules, const cAgentItem::FieldList& fields) {
    String body;
    for (const auto& field : fields) {
        bool skipped =
            std::find(kNotRegistered.begin(), kNotRegistered.end(), field->Name()) != kNotRegistered.end();
        if (!skipped) AppendField(body, rules, field->Name(), field->Value());
    }
    return body;
}

String SearchBody(const TextRules& rules, const cSearchFields& fields) {
    String body;
    for (const auto& field : fields) {
        if (!field->FieldData().empty()) AppendField(body, rules, field->FieldName(), field->FieldData());
    }
    return body;
}

}  // namespace

String cAgentItem::xml() const { return document_->Xml(); }
void cAgentItem::xml(StringView value) {
    document_->Load(value);
    jid_ = document_->Root().Attribute(u"jid");
}

String cAgentItem::Name() const { return document_->Root().Child(u"name").Text(); }
String cAgentItem::Service() const { return document_->Root().Child(u"service").Text(); }

bool cAgentItem::Has(StringView child) const { return static_cast<bool>(document_->Root().Child(child)); }
bool cAgentItem::CanRegister() const { return Has(u"register"); }
bool cAgentItem::CanSearch() const { return Has(u"search"); }
bool cAgentItem::IsGroupChat() const { return Has(u"groupchat"); }
bool cAgentItem::IsTransport() const { return Has(u"transport"); }

bool cAgentItem::Registered() const {
    return std::any_of(fields_.begin(), fields_.end(),
                       [](const auto& field) { return EqualsIgnoringCase(field->Name(), u"registered"); });
}

void cAgentItem::SetSession(std::weak_ptr<SessionLink> session, std::shared_ptr<cSearchFields> searchFields) {
    session_ = std::move(session);
    searchFields_ = std::move(searchFields);
}

void cAgentItem::SendQuery(StringView type, StringView xmlns, StringView body) const {
    std::shared_ptr<SessionLink> link = RequireSession(session_);
    SendNormalized(*link, Query(link->Text(), type, link->GetNextID(), JID(), xmlns, body));
}

void cAgentItem::GetSearchFields() { SendQuery(u"get", u"jabber:iq:search", {}); }

void cAgentItem::Search() {
    const TextRules& rules = RequireSession(session_)->Text();
    SendQuery(u"set", u"jabber:iq:search", SearchBody(rules, *searchFields_));
}

void cAgentItem::QueryGateway() {
    std::shared_ptr<SessionLink> link = RequireSession(session_);
    link->SendXML(Compose(link->Text(), {u"<iq type='get' to='", Quoted(JID()),
                                         u"'><query xmlns='jabber:iq:gateway'></query></iq>"}));
}

void cAgentItem::Update() {
    const TextRules& rules = RequireSession(session_)->Text();
    SendQuery(u"set", u"jabber:iq:register", RegistrationBody(rules, fields_));
}

void cAgentItem::Delete() {
    std::shared_ptr<SessionLink> link = RequireSession(session_);
    String contact = JID() + u"/registered";
    SendNormalized(*link, Compose(link->Text(), {u"<iq id='", Quoted(link->GetNextID()),
                                                 u"' type='set'><query xmlns='jabber:iq:roster'><item jid='",
                                                 Quoted(contact), u"' name='", Quoted(contact),
                                                 u"' subscription='remove'/></query></iq>"}));
}

std::shared_ptr<cAgentField> cAgentItem::AddField(StringView name, StringView value) {
    return AddNamed(fields_, name, value);
}

std::shared_ptr<cAgentAttrib> cAgentItem::AddAttrib(StringView name, StringView value) {
    return AddNamed(attribs_, name, value);
}

std::int16_t cAgentItem::FindField(StringView name) const { return FindNamed(fields_, name); }
std::int16_t cAgentItem::FindAttrib(StringView name) const { return FindNamed(attribs_, name); }

String cAgentItem::GetField(StringView name) const {
    String value;
    for (const auto& field : fields_) {
        if (field->Name() == name) value = field->Value();
    }
    return value;
}

void cAgentItem::SetField(StringView name, StringView value) { fields_.Item(FindField(name))->Value(value); }

}  // namespace quorix
