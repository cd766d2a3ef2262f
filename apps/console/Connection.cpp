#include "apps/console/Connection.h"

#include <glib.h>
#include <openssl/x509.h>

#include "apps/console/Console.h"
#include "apps/console/Folders.h"
#include "apps/console/Mask.h"
#include "apps/console/Proxy.h"
#include "apps/console/StanzaError.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

constexpr std::int16_t kAttempts = 32767;  // in a row; a client that listens does so for months

}  // namespace

Connection::Connection(Console& console, const Options& options)
    : Desk(console), options_(options), known_(StateFile("servers")), newUser_(options.newUser) {}

// -- Opening --

void Connection::Apply() {
    cSession& session = Session();
    session.Mode(options_.classic ? KV_Classic : KV_Modern);
    session.ServerAddress(TextFromUtf8(options_.server));
    session.Port(static_cast<std::int16_t>(options_.port));
    session.username(Inserted(session, TextFromUtf8(options_.user)));
    session.Password(TextFromUtf8(options_.password));
    session.Resource(TextFromUtf8(options_.resource));
    session.UseSSL(options_.tls);
    session.Reconnect(false);  // a first attempt that fails is the user's to repeat
    session.Socket()->SSLCAFile(TextFromUtf8(options_.ca));
    ApplyProxy();
}

void Connection::ApplyProxy() {
    const std::optional<Proxy> proxy = ParseProxy(options_.proxy);
    if (!proxy) return;
    Session().ProxyType(proxy->type);
    Session().ProxyHostname(TextFromUtf8(proxy->host));
    Session().ProxyPort(proxy->port);
    Session().ProxyAuthentication(proxy->user.empty() ? KV_SocksNoAuth : KV_SocksUserPass);
    Session().ProxyUsername(Encoded(Session(), TextFromUtf8(proxy->user)));
    Session().ProxyPassword(Encoded(Session(), TextFromUtf8(proxy->password)));
    Session().ProxyUseRemoteDNS(options_.remoteDns);
}

void Connection::Open() {
    Apply();
    Show("connecting", {{"host", Session().ServerAddress()}});
    StartDeadline();
    Session().Connect(newUser_);
    if (!options_.tls || !Session().IsConnected()) return;
    const cSocketSSL& socket = *Session().Socket();
    Show("certificate", {{"cipher", socket.SSLCipher()},
                         {"subject", socket.SSLSubject()},
                         {"issuer", socket.SSLIssuer()},
                         {"verdict", std::string(X509_verify_cert_error_string(socket.SSLTrusted()))},
                         {"fingerprint", PeerIdentity()}});
    if (!IsTrusted()) Distrust();
}

void Connection::OpenNew(StringView user, StringView password) {
    isEndExpected_ = true;
    Session().Disconnect();
    isEndExpected_ = false;
    online_ = false;
    options_.user = Utf8FromText(user);
    options_.password = Utf8FromText(password);
    newUser_ = true;
    wasOnline_ = false;
    Open();
}

// -- Trust --

String Connection::PeerIdentity() const {
    const cSocketSSL& socket = *Session().Socket();
    return Concat({socket.SSLSubject(), u" / ", socket.SSLIssuer()});
}

bool Connection::IsTrusted() const {
    const std::string accepted = options_.pin.empty() ? known_.Fingerprint(options_.server) : options_.pin;
    const bool isAccepted = !accepted.empty() && accepted == Utf8FromText(PeerIdentity());
    return !options_.tls || options_.insecure || isAccepted || Session().Socket()->SSLTrusted() == X509_V_OK;
}

// Nothing of the login has been sent by now.
void Connection::Distrust() {
    const String identity = PeerIdentity();
    const std::string before = known_.Fingerprint(options_.server);
    reason_ = u"the certificate is not trusted";
    isEndExpected_ = true;
    Session().Disconnect();
    StopDeadline();
    if (!before.empty()) {
        Show("usage", {{"text", Concat({u"THE CERTIFICATE HAS CHANGED. You had accepted ",
                                        TextFromUtf8(before), u". Somebody may be listening."})}});
    }
    auto answered = [this, identity](bool yes) {
        if (!yes) return End(ExitCode::untrusted, u"No login", reason_);
        known_.Remember(options_.server, Utf8FromText(identity));
        Open();
    };
    Owner().Ask("This certificate is not trusted. Accept it from now on?", answered);
}

// -- Deadline --

void Connection::StartDeadline() {
    StopDeadline();
    auto passed = [](gpointer self) -> gboolean {
        auto* connection = static_cast<Connection*>(self);
        connection->deadline_ = 0;
        connection->End(ExitCode::silence, u"No login", u"the server does not answer");
        return G_SOURCE_REMOVE;
    };
    if (options_.timeout > 0)
        deadline_ = g_timeout_add_seconds(static_cast<guint>(options_.timeout), passed, this);
}

void Connection::StopDeadline() {
    if (deadline_ != 0) g_source_remove(std::exchange(deadline_, 0U));
}

// -- What becomes of it --

void Connection::OnAuthorized() {
    StopDeadline();
    online_ = true;
    wasOnline_ = true;
    newUser_ = false;
    Session().Reconnect(options_.reconnect > 0);
    Session().ReconnectInterval(static_cast<std::int16_t>(options_.reconnect));
    Session().ReconnectAttempts(kAttempts);
    Show("login", {{"jid", Concat({Text(Session().MyJid()), u"/", Session().Resource()})}});
    Owner().OnReady();
}

void Connection::OnNewUserCreated() {
    Show("account-created", {});
    isEndExpected_ = true;
    newUser_ = false;
}

void Connection::OnDisConnected() {
    online_ = false;
    if (Owner().IsQuitting() || std::exchange(isEndExpected_, false)) return;
    const String reason = std::exchange(reason_, String());
    const String told = reason.empty() ? String(u"the server has closed the connection") : reason;
    if (!wasOnline_) return End(ExitCode::network, u"No login", told);
    if (options_.task == Options::Task::send) return End(ExitCode::network, u"The connection was lost", told);
    // Whoever has taken over would be thrown out in turn.
    if (StartsWith(told, u"conflict")) return End(ExitCode::replaced, u"Another login has taken over", told);
    Show("disconnected", {{"reason", told}});
    Owner().OnLost();
    if (!Session().Reconnect()) return Owner().Quit(ExitCode::network);
}

void Connection::OnSocketError(const NodePtr& /*XMLElement*/, StringView Description, std::int16_t Code) {
    reason_ = Concat({Description, u" (", ToString(Code), u")"});
    if (!wasOnline_) End(ExitCode::network, u"No connection", reason_);
}

// Errors of messages are the chat's.
void Connection::OnError(const NodePtr& XMLElement, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                         StringView ErrorDescription) {
    if (XMLElement && XMLElement->Root().Is(u"message")) return;
    reason_ = XMLElement ? StanzaError::Of(XMLElement->Root()).Reason() : String(ErrorDescription);
}

// Before the login there are no other queries than the login's.
void Connection::OnIQError(const NodePtr& XMLElement, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                           StringView /*ErrorDescription*/) {
    if (Session().Active()) return;
    const String what = newUser_ ? u"account refused" : u"login refused";
    End(ExitCode::refused, what, Text(StanzaError::Of(XMLElement->Root()).Reason()));
}

void Connection::End(ExitCode code, const String& what, StringView reason) {
    if (Owner().IsQuitting()) return;
    StopDeadline();
    Owner().Fail(what, reason);
    Owner().Quit(code);
}

std::string Connection::State() const {
    if (online_)
        return options_.tls ? (Session().Socket()->SSLTrusted() == X509_V_OK ? "online, TLS"
                                                                             : "online, TLS by your word")
                            : "online, no TLS";
    return wasOnline_ ? "offline, connecting again" : "connecting";
}

// -- The traffic --

void Connection::OnIncomingXML(StringView XML) {
    if (!IsTrusted())
        return Distrust();  // a reconnection is judged here, before anything secret has gone out
    if (options_.xml) Show("xml-in", {{"xml", MaskSecrets(Text(XML))}});
}

void Connection::OnOutgoingXML(StringView XML) {
    if (options_.xml) Show("xml-out", {{"xml", MaskSecrets(Text(XML))}});
}

}  // namespace quorix::console
