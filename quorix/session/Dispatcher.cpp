#include "quorix/session/Dispatcher.h"

#include "quorix/auth/Account.h"
#include "quorix/base/Number.h"
#include "quorix/im/Messages.h"

namespace quorix {

namespace {

constexpr StringView kLoginId = u"kv_login";

}  // namespace

const Dispatcher::Route Dispatcher::kRoutes[] = {
    {u"jabber:iq:auth", &Dispatcher::LoginFields},
    {u"jabber:iq:admin", &Dispatcher::Administration},
    {u"jabber:iq:roster", &Dispatcher::RosterQuery},
    {u"jabber:iq:register", &Dispatcher::Registration},
    {u"", &Dispatcher::WithoutQuery},
};

void Dispatcher::ProcessStanza(const Frame& frame) {
    session_.Raise(&SessionEvents::OnIncomingXML, frame.text);
    try {
        Dispatch(Stanza(frame.node));
    } catch (
        const std::exception&) {  // NOLINT(bugprone-empty-catch): a parser's error ends its stanza, no more
    }
}

void Dispatcher::Dispatch(const Stanza& stanza) {
    if (stanza.root.Is(u"iq")) {
        Iq(stanza);
    } else if (stanza.root.Is(u"presence")) {
        HandlePresence(self_, session_.presence_, stanza);
    } else if (stanza.root.Is(u"message")) {
        HandleMessage(self_, stanza);
    }
}

// -- Queries --

void Dispatcher::Iq(const Stanza& stanza) {
    if (!AccountReply(stanza)) {
        IqError(stanza);
        TakeToBranch(stanza);
    }
    session_.Raise(&SessionEvents::OnIQ, stanza.node);
}

void Dispatcher::IqError(const Stanza& stanza) {
    if (!stanza.IsError()) return;
    session_.Raise(&SessionEvents::OnIQError, stanza.node, stanza.from, stanza.ErrorCode(),
                   stanza.ErrorText());
}

void Dispatcher::TakeToBranch(const Stanza& stanza) {
    String nameSpace = stanza.Query().Attribute(u"xmlns");
    for (const Route& route : kRoutes) {
        if (route.nameSpace == nameSpace) return (this->*route.branch)(stanza);
    }
}

// -- Login and account --

bool Dispatcher::AccountReply(const Stanza& stanza) {
    bool login = stanza.id == kLoginId;
    bool newUser = stanza.id == kNewUserId;
    bool changePass = stanza.id == kChangePasswordId;
    bool removeAccount = stanza.id == kRemoveAccountId;
    if (!login && !newUser && !changePass && !removeAccount) return false;
    if (stanza.IsError()) {
        IqError(stanza);
        if (!removeAccount) LoginFailure(stanza);
    }
    if (!stanza.IsResult()) return true;
    if (login) LoginReply(stanza);
    if (newUser) NewUserReply(stanza);
    if (changePass) session_.Raise(&SessionEvents::OnChangedPassword);
    if (removeAccount) session_.Raise(&SessionEvents::OnAccountRemoved, stanza.from, stanza.id);
    return true;
}

// With a form inside, the server asks for more: that is no success.
void Dispatcher::LoginReply(const Stanza& stanza) {
    bool form = static_cast<bool>(stanza.Query().FirstElement());
    if (LoginPending() && !form) session_.CompleteLogin();
}

// The account is there. The connection ends, and since the session was opened for a new user it logs in
// again.
void Dispatcher::NewUserReply(const Stanza& /*stanza*/) {
    if (!LoginPending()) return;
    session_.BecomeActive();
    session_.Raise(&SessionEvents::OnNewUserCreated);
    session_.CloseSession({}, {});
}

void Dispatcher::LoginFailure(const Stanza& stanza) {
    if (LoginPending() && !stanza.ErrorText().empty()) session_.CloseSession({}, {});
}

// What the server offers, on each reply anew.
void Dispatcher::LoginFields(const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    XmlNode query = stanza.Query();
    session_.login_.digest = static_cast<bool>(query.Child(u"digest"));
    session_.login_.sequence = WireInt16(query.Child(u"sequence").Text());
    session_.login_.token = query.Child(u"token").Text();
    session_.StartLogin();
}

// The form of a new account is filled in at once; any other belongs to an agent.
void Dispatcher::Registration(const Stanza& stanza) {
    if (stanza.IsResult() && session_.newUser_) SendNewUser(session_, stanza);
}

// -- Other queries --

void Dispatcher::Administration(const Stanza& stanza) {
    if (stanza.IsResult() && stanza.node->TagExists(u"presence")) ParsePresenceList(session_, stanza);
}

void Dispatcher::RosterQuery(const Stanza& stanza) {
    session_.roster_.ParseRoster(self_, session_.presence_, stanza);
}

void Dispatcher::WithoutQuery(const Stanza& stanza) {
    if (stanza.IsResult()) session_.Raise(&SessionEvents::OnIQResult, stanza.node, stanza.from);
}

}  // namespace quorix
