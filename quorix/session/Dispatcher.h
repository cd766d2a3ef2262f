// Takes each stanza to the feature that owns it, and raises the events that belong to no feature.
#pragma once

#include "quorix/link/Stanza.h"
#include "quorix/session/SessionCore.h"

namespace quorix {

class Dispatcher {
public:
    Dispatcher(SessionCore& session, const std::shared_ptr<SessionLink>& self)
        : session_(session), self_(self) {}

    void ProcessStanza(Frame frame);

private:
    using Branch = void (Dispatcher::*)(const Stanza&);
    struct Route {
        StringView nameSpace;
        Branch branch;
    };
    static const Route kRoutes[];

    void TellText(Frame& frame);
    void Dispatch(const Stanza& stanza);
    void Iq(const Stanza& stanza);
    void IqError(const Stanza& stanza);

    // The replies that are known by their id, with or without a query. False for any other stanza.
    bool AccountReply(const Stanza& stanza);
    bool Refusal(const Stanza& stanza);
    void LoginReply(const Stanza& stanza);
    void NewUserReply(const Stanza& stanza);
    void LoginFailure(const Stanza& stanza);
    bool LoginPending() const { return !session_.authorized_ && session_.streamOpen_; }

    void TakeToBranch(const Stanza& stanza);
    void TakeToService(const Stanza& stanza, StringView nameSpace);
    void LoginFields(const Stanza& stanza);
    void Registration(const Stanza& stanza);
    void AgentList(const Stanza& stanza);
    void SearchReply(const Stanza& stanza);
    void VCardReply(const Stanza& stanza);
    void Administration(const Stanza& stanza);
    void RosterQuery(const Stanza& stanza);
    void WithoutQuery(const Stanza& stanza);

    SessionCore& session_;
    const std::shared_ptr<SessionLink>& self_;
};

}  // namespace quorix
