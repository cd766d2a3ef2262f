#include "testkit/LoopbackConnection.h"

#include "quorix/auth/SHAHash.h"
#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"

namespace quorix::testkit {

const LoopbackConnection::Route LoopbackConnection::kRoutes[] = {
    {u"jabber:iq:auth", &LoopbackConnection::Auth},
    {u"jabber:iq:register", &LoopbackConnection::Register},
    {u"jabber:iq:roster", &LoopbackConnection::RosterList},
};

// -- The stream --

void LoopbackConnection::OnDataArrival(std::string_view bytes, StringView /*remoteHost*/) {
    if (!streamOpen_) return OpenStream();
    framer_.Append(bytes);
    while (std::optional<Frame> frame = framer_.Next()) Take(Stanza(frame->tree, frame->node));
}

void LoopbackConnection::OnClosed() {
    Close();
    server_.Forget(this);
}

void LoopbackConnection::OpenStream() {
    streamOpen_ = true;
    Send(Concat({u"<?xml version='1.0'?><stream:stream from='", LoopbackServer::kDomain, u"' id='", streamId_,
                 u"' xmlns='jabber:client' xmlns:stream='http://etherx.jabber.org/streams'>"}));
}

void LoopbackConnection::Take(const Stanza& stanza) {
    if (stanza.root.Is(u"iq")) return TakeIq(stanza);
    if (!authorized_) return;
    if (stanza.root.Is(u"presence")) TakePresence(stanza);
    if (stanza.root.Is(u"message")) TakeMessage(stanza);
}

void LoopbackConnection::TakeIq(const Stanza& stanza) {
    if (!stanza.IsGet() && !stanza.IsSet()) return;  // an answer has no answer
    std::optional<String> content = server_.services_.Answer(stanza, username_);
    if (authorized_ && content) return Result(stanza, *content);
    String nameSpace = stanza.Query().Attribute(u"xmlns");
    for (const Route& route : kRoutes) {
        if (route.nameSpace == nameSpace) return (this->*route.answer)(stanza);
    }
    Error(stanza, u"501", u"Not Implemented");
}

void LoopbackConnection::Result(const Stanza& stanza, StringView content) {
    Send(Concat({u"<iq type='result' from='", stanza.root.Attribute(u"to"), u"' id='", stanza.Id(), u"'>",
                 content, u"</iq>"}));
}

void LoopbackConnection::Error(const Stanza& stanza, StringView code, StringView text) {
    Send(Concat(
        {u"<iq type='error' id='", stanza.Id(), u"'><error code='", code, u"'>", text, u"</error></iq>"}));
}

String LoopbackConnection::FullJid() const {
    return Concat({username_, u"@", LoopbackServer::kDomain, u"/", resource_});
}

// -- Login and account --

void LoopbackConnection::Auth(const Stanza& stanza) {
    if (stanza.IsSet()) return Login(stanza);
    const LoopbackAccount* account = server_.FindAccount(stanza.Query().Child(u"username").Text());
    String offer = u"<username/><password/><resource/>";
    if (account != nullptr && account->digest) offer += u"<digest/>";
    if (account != nullptr && account->sequence > 0) {
        offer += Concat(
            {u"<sequence>", ToString(account->sequence), u"</sequence><token>", account->token, u"</token>"});
    }
    Result(stanza, Concat({u"<query xmlns='jabber:iq:auth'>", offer, u"</query>"}));
}

void LoopbackConnection::Login(const Stanza& stanza) {
    ParsedNode query = stanza.Query();
    String username = query.Child(u"username").Text();
    const LoopbackAccount* account = server_.FindAccount(username);
    if (account == nullptr || !Proves(*account, query)) return Error(stanza, u"401", u"Unauthorized");
    authorized_ = true;
    username_ = username;
    resource_ = query.Child(u"resource").Text();
    Send(Concat({u"<iq type='result' id='", stanza.Id(), u"'/>"}));
}

bool LoopbackConnection::Proves(const LoopbackAccount& account, const ParsedNode& query) const {
    if (ParsedNode digest = query.Child(u"digest")) {
        return digest.Text() == SHAHash(Concat({streamId_, account.password}));
    }
    if (ParsedNode hash = query.Child(u"hash")) {
        String expected = SHAHash(Concat({SHAHash(account.password), account.token}));
        for (std::int32_t round = 0; round < account.sequence; ++round) expected = SHAHash(expected);
        return hash.Text() == expected;
    }
    ParsedNode password = query.Child(u"password");
    return password && password.Text() == account.password;
}

void LoopbackConnection::Register(const Stanza& stanza) {
    ParsedNode query = stanza.Query();
    if (stanza.IsGet()) {
        return Result(stanza,
                      u"<query xmlns='jabber:iq:register'><instructions>Choose a name and a password."
                      u"</instructions><username/><password/></query>");
    }
    if (query.Child(u"remove")) {
        server_.RemoveAccount(username_);
    } else {
        server_.AddAccount(query.Child(u"username").Text(), {.password = query.Child(u"password").Text()});
    }
    Send(Concat({u"<iq type='result' id='", stanza.Id(), u"'/>"}));
}

// -- The contact --

void LoopbackConnection::RosterList(const Stanza& stanza) {
    if (stanza.IsSet()) return Result(stanza, {});
    Result(stanza, Concat({u"<query xmlns='jabber:iq:roster'><item jid='", LoopbackServer::kContact,
                           u"' name='Echo' subscription='both'><group>Friends</group></item></query>"}));
}

void LoopbackConnection::TakePresence(const Stanza& stanza) {
    for (const String& reply : server_.services_.AnswerPresence(stanza, FullJid())) Send(reply);
    if (!stanza.type.empty() || stanza.root.HasAttribute(u"to")) return;
    Send(Concat({u"<presence from='", LoopbackServer::kContact, u"/loop' to='", FullJid(),
                 u"'><status>at your service</status><priority>1</priority></presence>"}));
}

void LoopbackConnection::TakeMessage(const Stanza& stanza) {
    for (const String& reply : server_.services_.AnswerMessage(stanza, FullJid())) Send(reply);
    if (RemoveResource(stanza.root.Attribute(u"to")) != LoopbackServer::kContact) return;
    ParsedNode body = stanza.root.Child(u"body");
    if (!body) return;
    auto reply = XmlDocument::Create();
    reply->Load(Concat({u"<message type='chat' from='", LoopbackServer::kContact, u"/loop' to='", FullJid(),
                        u"'><body/></message>"}));
    reply->Root().Child(u"body").Text(Concat({u"You said: ", body.Text()}));
    Send(reply->Xml());
}

}  // namespace quorix::testkit
