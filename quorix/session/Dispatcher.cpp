#include "quorix/session/Dispatcher.h"

#include "quorix/auth/Account.h"
#include "quorix/base/Number.h"
#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/services/Browse.h"
#include "quorix/services/Conference.h"
#include "quorix/services/Information.h"
#include "quorix/services/OutOfBand.h"
#include "quorix/services/VCard.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

constexpr StringView kLoginId = u"kv_login";
constexpr StringView kOutOfBand = u"jabber:iq:oob";

// What needs the session's link alone.
struct ServiceRoute {
    StringView nameSpace;
    void (*handle)(SessionLink&, const Stanza&);
};

constexpr ServiceRoute kServices[] = {
    {u"jabber:iq:last", HandleLast},       {u"jabber:iq:time", HandleTime},
    {u"jabber:iq:version", HandleVersion}, {u"jabber:iq:conference", HandleConference},
    {u"jabber:iq:browse", HandleBrowse},   {kOutOfBand, HandleOob},
    {u"jabber:iq:gateway", HandleGateway},
};

// A parser's error ends its own work, no more.
template <class Step>
void Contain(Step step) {
    try {
        step();
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): see above
    }
}

// Servers leave the query out of a refusal, so an error is known by its id too.
bool IsAgentList(const Stanza& stanza, StringView nameSpace) {
    return stanza.Id() == kAgentListId && (nameSpace == u"jabber:iq:agents" || stanza.IsError());
}

}  // namespace

const Dispatcher::Route Dispatcher::kRoutes[] = {
    {u"jabber:iq:auth", &Dispatcher::LoginFields},
    {u"jabber:iq:admin", &Dispatcher::Administration},
    {u"jabber:iq:roster", &Dispatcher::RosterQuery},
    {u"jabber:iq:register", &Dispatcher::Registration},
    {u"jabber:iq:search", &Dispatcher::SearchReply},
    {u"vcard-temp", &Dispatcher::VCardReply},
    {u"", &Dispatcher::WithoutQuery},
};

void Dispatcher::ProcessStanza(Frame frame) {
    Contain([&] {
        if (session_.sinks_.WantWireText()) TellText(frame);
    });
    if (frame.IsStanza()) Contain([&] { Dispatch(Stanza(std::move(frame.tree), frame.node)); });
}

// The text is gone when the stanza is handled: both may be long.
void Dispatcher::TellText(Frame& frame) {
    WireBuffer bytes = std::move(frame.bytes);
    if (!bytes.IsEmpty()) return session_.RaiseWireText(&SessionEvents::OnIncomingXML, bytes.BecomeText());
    session_.RaiseWireText(&SessionEvents::OnIncomingXML, frame.Xml());
}

void Dispatcher::Dispatch(const Stanza& stanza) {
    if (stanza.root.Is(u"iq")) {
        if (!session_.line_->IsOwnAnswer(stanza)) Iq(stanza);
    } else if (stanza.root.Is(u"presence")) {
        HandlePresence(self_, session_.presence_, stanza);
    } else if (stanza.root.Is(u"message")) {
        HandleMessage(self_, stanza);
    }
}

// -- Queries --

void Dispatcher::Iq(const Stanza& stanza) {
    const std::uint32_t epoch = session_.socketEpoch_;
    Contain([&] {
        if (Refusal(stanza) || AccountReply(stanza)) return;
        IqError(stanza);
        TakeToBranch(stanza);
    });
    if (session_.socketEpoch_ != epoch && !session_.rules_->ReportsAfterEnd()) return;
    session_.Raise(&SessionEvents::OnIQ, stanza.Node());
}

void Dispatcher::IqError(const Stanza& stanza) {
    bool reported = stanza.Query().AttributeIs(u"xmlns", kOutOfBand);  // by OnOOBResult
    if (!stanza.IsError() || reported) return;
    StanzaError error = session_.ErrorOf(stanza);
    session_.Raise(&SessionEvents::OnIQError, stanza.Node(), stanza.From(), error.code, error.text);
}

void Dispatcher::TakeToBranch(const Stanza& stanza) {
    String nameSpace = stanza.Query().Attribute(u"xmlns");
    if (IsAgentList(stanza, nameSpace)) return AgentList(stanza);
    for (const Route& route : kRoutes) {
        if (route.nameSpace == nameSpace) return (this->*route.branch)(stanza);
    }
    TakeToService(stanza, nameSpace);
}

void Dispatcher::TakeToService(const Stanza& stanza, StringView nameSpace) {
    for (const ServiceRoute& route : kServices) {
        if (route.nameSpace == nameSpace) return route.handle(session_, stanza);
    }
}

// -- Login and account --

// A login or an account that is refused, at any step, where that ends the session.
bool Dispatcher::Refusal(const Stanza& stanza) {
    const String id = stanza.Id();
    bool asked = id == kLoginId || id == kNewUserId ||
                 (!session_.loginQueryId_.empty() && id == session_.loginQueryId_);
    if (!asked || !stanza.IsError() || !LoginPending() || !session_.rules_->RefusalEnds()) return false;
    StanzaError error = session_.ErrorOf(stanza);
    session_.EndForGood(ToString(error.code), error.text);
    return true;
}

bool Dispatcher::AccountReply(const Stanza& stanza) {
    const String id = stanza.Id();
    bool login = id == kLoginId;
    bool newUser = id == kNewUserId;
    bool changePass = id == kChangePasswordId;
    bool removeAccount = id == kRemoveAccountId;
    bool known = login || newUser || changePass || removeAccount;
    if (!known || (!stanza.IsResult() && !stanza.IsError())) return false;
    if (stanza.IsError()) {
        IqError(stanza);
        if (!removeAccount) LoginFailure(stanza);
        return true;
    }
    if (login) LoginReply(stanza);
    if (newUser) NewUserReply(stanza);
    if (changePass) session_.Raise(&SessionEvents::OnChangedPassword);
    if (removeAccount) session_.Raise(&SessionEvents::OnAccountRemoved, stanza.From(), id);
    return true;
}

// With a form inside, the server asks for more: that is no success.
void Dispatcher::LoginReply(const Stanza& stanza) {
    bool form = static_cast<bool>(stanza.Query().FirstElement());
    if (LoginPending() && !form) session_.CompleteLogin();
}

// The account is there. The connection ends, and since the session was opened for a new user it logs in
// again; unless a handler has connected anew, which is then the connection that counts.
void Dispatcher::NewUserReply(const Stanza& /*stanza*/) {
    if (!LoginPending()) return;
    session_.BecomeActive();
    session_.accountCreated_ = true;
    std::uint32_t generation = session_.generation_;
    session_.Raise(&SessionEvents::OnNewUserCreated);
    if (session_.generation_ == generation) session_.CloseSession({}, {});
}

void Dispatcher::LoginFailure(const Stanza& stanza) {
    if (LoginPending() && !session_.ErrorOf(stanza).text.empty()) session_.CloseSession({}, {});
}

// What the server offers, on each reply anew.
void Dispatcher::LoginFields(const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    ParsedNode query = stanza.Query();
    session_.login_.digest = static_cast<bool>(query.Child(u"digest"));
    session_.login_.sequence = WireInt16(query.Child(u"sequence").Text());
    session_.login_.token = query.Child(u"token").Text();
    session_.StartLogin();
}

// The form of a new account is filled in at once; any other belongs to an agent.
void Dispatcher::Registration(const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    if (!session_.newUser_) return session_.agents_.HandleRegistrationForm(stanza);
    if (!session_.MayTellPassword()) return session_.RefuseToTellPassword();
    SendNewUser(session_, stanza);
}

// -- Other queries --

void Dispatcher::Administration(const Stanza& stanza) {
    if (stanza.IsResult() && FindTagBelow(stanza.root, u"presence")) ParsePresenceList(self_, stanza);
}

void Dispatcher::RosterQuery(const Stanza& stanza) {
    session_.roster_.ParseRoster(self_, session_.presence_, stanza);
}

void Dispatcher::AgentList(const Stanza& stanza) { session_.agents_.HandleList(self_, stanza); }
void Dispatcher::SearchReply(const Stanza& stanza) { session_.search_.Handle(session_, stanza); }
void Dispatcher::VCardReply(const Stanza& stanza) { HandleVCard(self_, stanza); }

void Dispatcher::WithoutQuery(const Stanza& stanza) {
    if (stanza.IsResult()) session_.Raise(&SessionEvents::OnIQResult, stanza.Node(), stanza.From());
}

}  // namespace quorix
