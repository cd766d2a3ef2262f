#include "apps/console/ServiceDesk.h"

#include "apps/console/Console.h"
#include "apps/console/Text.h"

namespace quorix::console {

namespace {

String Tag(StringView name, StringView text) { return Concat({u"<", name, u">", text, u"</", name, u">"}); }

// A search as it goes out: in the manner of the data form when the service has sent one.
String SearchBody(const cSession& session, const Values& values, bool asForm) {
    String body;
    for (const auto& [name, value] : values) {
        const String safeName = InXml(session, name);
        const String safeValue = InXml(session, value);
        body += asForm ? Concat({u"<field var='", safeName, u"'>", Tag(u"value", safeValue), u"</field>"})
                       : Tag(safeName, safeValue);
    }
    return asForm ? Concat({u"<x xmlns='jabber:x:data' type='submit'>", body, u"</x>"}) : body;
}

}  // namespace

std::span<const CardLine> CardLines() {
    static constexpr CardLine kLines[] = {
        {"FullName", &cVcard::FullName, &cVcard::FullName},
        {"NickName", &cVcard::NickName, &cVcard::NickName},
        {"Email", &cVcard::Email, &cVcard::Email},
        {"WebPage", &cVcard::WebPage, &cVcard::WebPage},
        {"BirthDate", &cVcard::BirthDate, &cVcard::BirthDate},
        {"HomePhone", &cVcard::HomePhone, &cVcard::HomePhone},
        {"HomeCity", &cVcard::HomeCity, &cVcard::HomeCity},
        {"OrgName", &cVcard::OrgName, &cVcard::OrgName},
        {"Description", &cVcard::Description, &cVcard::Description},
    };
    return kLines;
}

// -- Agents --

void ServiceDesk::OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& /*XMLElement*/) {
    Show("agent",
         {{"jid", Text(Agent->JID())},
          {"name", Text(Agent->Name())},
          {"_abilities",
           Concat({Agent->CanRegister() ? u" register" : u"", Agent->CanSearch() ? u" search" : u"",
                   Agent->IsGroupChat() ? u" rooms" : u"", Agent->IsTransport() ? u" gateway" : u""})},
          {"register", Agent->CanRegister()},
          {"search", Agent->CanSearch()},
          {"rooms", Agent->IsGroupChat()},
          {"gateway", Agent->IsTransport()}});
}

void ServiceDesk::OnAgentEnd() { Show("agents", {{"count", Session().Agents().Count()}}); }

void ServiceDesk::OnGatewayInfo(const NodePtr& /*XMLElement*/, StringView Desc) {
    Show("gateway", {{"text", Text(Desc)}});
}

void ServiceDesk::Register(StringView agentJid, Values values) {
    registration_ = {String(agentJid), std::move(values)};
    Session().GetAgentRegister(Inserted(Session(), agentJid), Session().GetNextID());
}

// Replies that have no event of their own.
void ServiceDesk::OnIQ(const NodePtr& XMLElement) {
    const XmlNode root = XMLElement->Root();
    const bool isForm = root.FirstElement().AttributeIs(u"xmlns", u"jabber:iq:register");
    if (!root.AttributeIs(u"type", u"result")) return;
    if (isForm) ContinueRegistration(root.Attribute(u"from"));
    const bool isSearch = !searchId_.empty() && root.AttributeIs(u"id", searchId_);
    if (isSearch && !XMLElement->TagExists(u"item")) Show("no-hits", {});
}

// The form has been put into the agent's fields by now.
void ServiceDesk::ContinueRegistration(StringView from) {
    if (registration_.jid.empty() || registration_.jid != Text(from)) return;
    const Pending wanted = std::exchange(registration_, {});
    const std::int16_t position = Session().FindAgent(from);
    if (position == 0) return Fail(wanted.jid, u"unknown agent; /agents fetches the list");
    const std::shared_ptr<cAgentItem> agent = Session().Agents().Item(position);
    for (const auto& [name, value] : wanted.values) {
        if (agent->FindField(name) == 0) agent->AddField(name, {});
        agent->SetField(name, Inserted(Session(), value));
    }
    for (const auto& field : agent->Fields()) {
        const bool isSecret = field->Name() == u"password" || field->Name() == u"key";
        Show("field",
             {{"name", Text(field->Name())}, {"value", isSecret ? String(u"***") : Text(field->Value())}});
    }
    if (!wanted.values.empty()) agent->Update();
}

// -- Searching --

void ServiceDesk::Search(StringView jid, Values values) {
    search_ = {String(jid), std::move(values)};
    Session().SendXML(Concat({u"<iq type='get' id='", Session().GetNextID(), u"' to='", InXml(Session(), jid),
                              u"'><query xmlns='jabber:iq:search'/></iq>"}));
}

void ServiceDesk::OnSearchFields(const std::shared_ptr<cSearchFields>& /*SearchFields*/) {
    if (search_.values.empty()) return ShowForm();
    SubmitSearch();
}

void ServiceDesk::ShowForm() {
    for (const auto& field : *Session().SearchFields()) {
        Show("form-field", {{"name", Text(field->FieldName())}, {"label", Text(field->FieldData())}});
    }
    for (const auto& field : Session().SearchXData()->Fields()) {
        Show("form-field",
             {{"name", Text(field->Var())}, {"label", Concat({u"(", Text(field->Label()), u")"})}});
    }
}

void ServiceDesk::SubmitSearch() {
    const bool asForm = Session().SearchXData()->Fields().Count() > 0;
    const Pending search = std::exchange(search_, {});
    searchId_ = Session().GetNextID();
    Session().SendXML(Concat({u"<iq type='set' id='", searchId_, u"' to='", InXml(Session(), search.jid),
                              u"'><query xmlns='jabber:iq:search'>",
                              SearchBody(Session(), search.values, asForm), u"</query></iq>"}));
}

void ServiceDesk::OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) {
    for (const auto& hit : *Searchresults) {
        String values;
        for (const auto& field : *hit->Fields()) {
            if (!field->FieldData().empty()) values += Concat({u" | ", Text(field->FieldData())});
        }
        Show("hit", {{"jid", Text(hit->SearchItem())},
                     {"_values", values},
                     {"values", values.empty() ? values : values.substr(3)}});
    }
}

// -- Business cards --

void ServiceDesk::OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                                const NodePtr& /*XMLElement*/) {
    const String owner = FromJid.empty() ? String(u"yourself") : Text(FromJid);
    bool isEmpty = true;
    for (const CardLine& line : CardLines()) {
        const String value = ((*Vcard).*line.get)();
        if (value.empty()) continue;
        if (std::exchange(isEmpty, false)) Show("card", {{"jid", owner}});
        Show("field", {{"name", std::string(line.name)}, {"value", value}});
    }
    if (isEmpty) Show("no-card", {{"jid", owner}});
}

}  // namespace quorix::console
