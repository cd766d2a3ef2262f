#include "quorix/services/Agents.h"

#include <algorithm>
#include <map>

#include "quorix/base/Number.h"
#include "quorix/link/StanzaText.h"
#include "quorix/services/PositionWhere.h"
#include "quorix/services/Query.h"
#include "quorix/services/XDataForm.h"
#include "quorix/xml/Finding.h"

namespace quorix {

void FetchAgents(SessionLink& link) {
    link.SendXML(
        Compose(link.Text(), {u"<iq id='", Quoted(kAgentListId), u"' to='", Quoted(link.ServerAddress()),
                              u"' type='get'><query xmlns='jabber:iq:agents'/></iq>"}));
}

void GetAgentRegister(SessionLink& link, StringView jid, StringView id) {
    link.SendXML(Query(link.Text(), u"get", id, jid, u"jabber:iq:register"));
}

std::int16_t Agents::FindAgent(StringView jid) const {
    return ToInt16(PositionWhere(items_, [&](const auto& agent) { return agent->jid_ == jid; }));
}

bool Agents::Knows(StringView bareJid) const {
    return std::any_of(items_.begin(), items_.end(),
                       [&](const auto& agent) { return EqualsIgnoringCase(agent->jid_, bareJid); });
}

void Agents::HandleList(const std::shared_ptr<SessionLink>& link, const Stanza& stanza) {
    link->Raise(&SessionEvents::OnAgentBegin);
    for (const ParsedNode& element : Outermost(stanza.root, u"agent")) AddAgent(link, stanza, element);
    link->Raise(&SessionEvents::OnAgentEnd);
}

void Agents::AddAgent(const std::shared_ptr<SessionLink>& link, const Stanza& stanza,
                      const ParsedNode& element) {
    auto agent = std::make_shared<cAgentItem>();
    agent->SetSession(link, searchFields_);
    agent->xml(element.Xml());
    if (items_.HasKey(agent->Name())) return;
    items_.Add(agent, agent->Name());
    link->Raise(&SessionEvents::OnAgentItem, agent, stanza.NodeOf(element));
}

std::shared_ptr<cAgentItem> Agents::LastWithJid(StringView jid) const {
    std::shared_ptr<cAgentItem> last;
    for (const auto& agent : items_) {
        if (agent->jid_ == jid) last = agent;
    }
    return last;
}

namespace {

// Finds fields by name as FindField does, in one scan for the whole form.
class FieldIndex {
public:
    explicit FieldIndex(cAgentItem& agent) : agent_(agent) {
        for (const auto& field : agent.Fields()) first_.try_emplace(field->Name(), field);
    }

    void Put(const String& name, StringView value) {
        auto known = first_.find(name);
        if (known != first_.end()) return known->second->Value(value);
        first_.emplace(name, agent_.AddField(name, value));
    }

private:
    cAgentItem& agent_;
    std::map<String, std::shared_ptr<cAgentField>> first_;
};

void FillDataForm(cAgentItem& agent, const ParsedNode& x) {
    if (!agent.xData()) agent.xData(std::make_shared<cXData>());
    FillXData(*agent.xData(), x);
}

}  // namespace

void Agents::HandleRegistrationForm(const Stanza& stanza) {
    std::shared_ptr<cAgentItem> agent = LastWithJid(stanza.From());
    if (!agent) return;
    FieldIndex fields(*agent);
    for (ParsedNode child = stanza.root.Child(u"query").FirstElement(); child; child = child.NextElement()) {
        if (child.Is(u"x")) {
            FillDataForm(*agent, child);
        } else {
            fields.Put(child.Name(), child.Text());
        }
    }
}

void HandleGateway(SessionLink& link, const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    link.Raise(&SessionEvents::OnGatewayInfo, stanza.Node(), stanza.Query().Child(u"desc").Text());
}

}  // namespace quorix
