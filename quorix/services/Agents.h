// The session's agents: listing them, finding them, and the replies that fill them (jabber:iq:agents,
// jabber:iq:register, jabber:iq:gateway).
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"
#include "quorix/services/cAgentItem.h"

namespace quorix {

inline constexpr StringView kAgentListId = u"fullagents";

void FetchAgents(SessionLink& link);

// Asks the agent `jid` for its registration form, under the caller's own `id`.
void GetAgentRegister(SessionLink& link, StringView jid, StringView id);

class Agents {
public:
    using List = Collection<std::shared_ptr<cAgentItem>>;

    // `searchFields` are what the agents' Search sends.
    explicit Agents(std::shared_ptr<cSearchFields> searchFields) : searchFields_(std::move(searchFields)) {}

    // In the order of their arrival, keyed by name.
    List& Items() { return items_; }
    const List& Items() const { return items_; }

    // Position from 1 of the first agent with exactly this JID, 0 when there is none. Error 6 beyond 32767.
    std::int16_t FindAgent(StringView jid) const;

    // There is an agent with this JID, ASCII case aside.
    bool Knows(StringView bareJid) const;

    // An agent list: begin, one event for each new agent, end. Nothing is cleared: agents that are listed
    // already, or have the name of one that is, are passed over.
    void HandleList(const std::shared_ptr<SessionLink>& link, const Stanza& stanza);

    // A registration form: its values become fields of the agent that sent it.
    void HandleRegistrationForm(const Stanza& stanza);

private:
    void AddAgent(const std::shared_ptr<SessionLink>& link, const Stanza& stanza, const ParsedNode& element);
    std::shared_ptr<cAgentItem> LastWithJid(StringView jid) const;

    List items_;
    std::shared_ptr<cSearchFields> searchFields_;
};

void HandleGateway(SessionLink& link, const Stanza& stanza);

}  // namespace quorix
