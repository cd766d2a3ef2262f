#include "apps/console/ServiceDesk.h"

#include <algorithm>

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

// A list that was refused ends too.
void ServiceDesk::OnAgentEnd() {
    if (!isRefused_) Show("agents", {{"count", Session().Agents().Count()}});
}

void ServiceDesk::OnIQError(const NodePtr& /*XMLElement*/, StringView /*FromJid*/,
                            std::int16_t /*eErrorCode*/, StringView /*ErrorDescription*/) {
    isRefused_ = true;
}

void ServiceDesk::OnGatewayInfo(const NodePtr& /*XMLElement*/, StringView Desc) {
    Show("gateway", {{"text", Text(Desc)}});
}

// Answers that have no event of their own are known by their id.
void ServiceDesk::OnIQ(const NodePtr& XMLElement) {
    isRefused_ = false;
    const XmlNode root = XMLElement->Root();
    const bool isAnswer = root.AttributeIs(u"type", u"result") || root.AttributeIs(u"type", u"error");
    const auto found = std::find_if(open_.begin(), open_.end(), [&](const Open& question) {
        return root.AttributeIs(u"id", question.id);
    });
    if (!isAnswer || found == open_.end()) return;
    const Open question = std::move(*found);
    open_.erase(found);
    if (root.AttributeIs(u"type", u"result")) (this->*question.answered)(question, XMLElement);
}

void ServiceDesk::Register(StringView agentJid, Values values) {
    open_.push_back(
        {&ServiceDesk::ContinueRegistration, Session().GetNextID(), String(agentJid), std::move(values)});
    Session().GetAgentRegister(Inserted(Session(), agentJid), open_.back().id);
}

// The form has been put into the agent's fields by now.
void ServiceDesk::ContinueRegistration(const Open& question, const NodePtr& answer) {
    const std::int16_t position = Session().FindAgent(answer->Root().Attribute(u"from"));
    if (position == 0) return Fail(question.jid, u"unknown agent; /agents fetches the list");
    const std::shared_ptr<cAgentItem> agent = Session().Agents().Item(position);
    for (const auto& [name, value] : question.values) {
        if (agent->FindField(name) == 0) agent->AddField(name, {});
        agent->SetField(name, Inserted(Session(), value));
    }
    for (const auto& field : agent->Fields()) {
        const bool isSecret = field->Name() == u"password" || field->Name() == u"key";
        Show("field",
             {{"name", Text(field->Name())}, {"value", isSecret ? String(u"***") : Text(field->Value())}});
    }
    if (!question.values.empty()) agent->Update();
}

// -- Searching --

void ServiceDesk::Search(StringView jid, Values values) {
    open_.push_back({&ServiceDesk::ContinueSearch, Session().GetNextID(), String(jid), std::move(values)});
    Session().SendXML(Concat({u"<iq type='get' id='", open_.back().id, u"' to='", InXml(Session(), jid),
                              u"'><query xmlns='jabber:iq:search'/></iq>"}));
}

// The form has been put into the session's fields by now.
void ServiceDesk::ContinueSearch(const Open& question, const NodePtr& /*answer*/) {
    if (question.values.empty()) return ShowForm();
    const bool asForm = Session().SearchXData()->Fields().Count() > 0;
    open_.push_back({&ServiceDesk::EndSearch, Session().GetNextID(), question.jid, {}});
    Session().SendXML(Concat({u"<iq type='set' id='", open_.back().id, u"' to='",
                              InXml(Session(), question.jid), u"'><query xmlns='jabber:iq:search'>",
                              SearchBody(Session(), question.values, asForm), u"</query></iq>"}));
}

void ServiceDesk::EndSearch(const Open& /*question*/, const NodePtr& answer) {
    if (!answer->TagExists(u"item")) Show("no-hits", {});
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
