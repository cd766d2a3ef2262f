#include "apps/console/Connection.h"

#include <fmt/format.h>
#include <glib.h>

#include "apps/console/Console.h"
#include "apps/console/Proxy.h"
#include "apps/console/StanzaError.h"
#include "apps/console/Text.h"
#include "quorix/base/Mask.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

constexpr std::int16_t kAttempts = 32767;  // in a row; a client that listens does so for months
constexpr std::int16_t kNoHost = 100;      // of OnSocketError
constexpr std::int16_t kUntrusted = 101;   // of OnSocketError: the certificate was refused
constexpr std::int16_t kNoAnswer = 408;    // of OnError: no login in time
constexpr std::uint16_t kPort = 5222;

String SocketReason(StringView description, std::int16_t code) {
    if (code == kNoHost) return u"unknown host";
    const bool endsWithDot = !description.empty() && description.back() == u'.';
    if (endsWithDot) description.remove_suffix(1);
    return Concat({description, u" (", ToString(code), u")"});
}

}  // namespace

Connection::Connection(Console& console, const Options& options)
    : Desk(console), options_(options), trust_(options), newUser_(options.newUser) {}

// -- Opening --

void Connection::Apply() {
    cSession& session = Session();
    session.Mode(options_.classic ? KV_Classic : KV_Modern);
    ApplyHost();
    session.username(Inserted(session, TextFromUtf8(options_.user)));
    session.Password(TextFromUtf8(options_.password));
    session.Resource(TextFromUtf8(options_.resource));
    session.UseSSL(options_.tls);
    session.Reconnect(false);  // a first attempt that fails is the user's to repeat
    session.Socket()->SSLCAFile(TextFromUtf8(options_.ca));
    trust_.Apply(session);
    ApplyProxy();
}

// A session of the classic mode has one name for the domain and the host, and looks up no port.
void Connection::ApplyHost() {
    cSession& session = Session();
    const bool isElsewhere = options_.server != options_.domain;
    session.ServerAddress(TextFromUtf8(options_.classic ? options_.server : options_.domain));
    session.ConnectHost(isElsewhere ? TextFromUtf8(options_.server) : String());
    session.Port(static_cast<std::int16_t>(options_.classic && options_.port == 0 ? kPort : options_.port));
    session.LoginTimeout(options_.timeout);
    session.AuthType(options_.plain ? KV_PlainAuth : KV_AutoAuth);
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
    if (options_.classic) StartDeadline();
    Session().Connect(newUser_);
    if (Session().IsConnected() && !trust_.IsAccepted(Session())) Distrust();
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

// Nothing of the login has been sent by now.
void Connection::Distrust() {
    Show("certificate", trust_.Verdict(Session()));
    isEndExpected_ = true;
    Session().Disconnect();
    isEndExpected_ = false;
    online_ = false;
    StopDeadline();
    if (options_.insecure) return OpenSoon(false);
    if (!trust_.Pin().empty()) {
        Owner().Fail(
            u"THE CERTIFICATE HAS CHANGED",
            Concat({u"accepted before was ", TextFromUtf8(trust_.Pin()), u"; somebody may be listening"}));
    }
    Owner().Ask("This certificate is not trusted. Accept it from now on, and no other?", [this](bool yes) {
        yes ? OpenSoon(true) : End(ExitCode::untrusted, u"No login", u"the certificate is not trusted");
    });
}

// Not from inside an event of the connection that ends.
void Connection::OpenSoon(bool remembered) {
    trust_.Accept(Session(), remembered);
    auto open = [](gpointer self) -> gboolean {
        static_cast<Connection*>(self)->Open();
        return G_SOURCE_REMOVE;
    };
    g_idle_add(open, this);
}

// -- Deadline --

void Connection::StartDeadline() {
    StopDeadline();
    auto passed = [](gpointer self) -> gboolean {
        auto* connection = static_cast<Connection*>(self);
        connection->deadline_ = 0;
        connection->End(ExitCode::silence, u"No login", u"the server has not answered in time");
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
    if (options_.tls) Show("certificate", trust_.Verdict(Session()));
    Show("login", {{"jid", Concat({Text(Session().MyJid()), u"/", Session().Resource()})}});
    Owner().OnReady();
}

void Connection::OnNewUserCreated() {
    Show("account-created", {});
    accountCreated_ = true;
    newUser_ = false;
}

void Connection::OnDisConnected() {
    online_ = false;
    if (Owner().IsQuitting() || isEndExpected_ || std::exchange(accountCreated_, false)) return;
    const String reason = std::exchange(reason_, String());
    const String told = reason.empty() ? String(u"the server has closed the connection") : reason;
    if (!wasOnline_) return GiveUp(told);
    if (options_.task == Options::Task::send) return End(ExitCode::network, u"The connection was lost", told);
    // Whoever has taken over would be thrown out in turn.
    if (StartsWith(told, u"conflict")) return End(ExitCode::replaced, u"Another login has taken over", told);
    Show("disconnected", {{"reason", told}});
    Owner().OnLost();
    if (!Session().Reconnect()) return Owner().Quit(ExitCode::network);
}

void Connection::OnSocketError(const NodePtr& /*XMLElement*/, StringView Description, std::int16_t Code) {
    if (Code == kUntrusted) return Distrust();
    reason_ = SocketReason(Description, Code);
    if (!wasOnline_) return GiveUp(reason_);
    if (!online_) Show("attempt-failed", {{"reason", reason_}});
}

// Errors of messages are the chat's.
void Connection::OnError(const NodePtr& XMLElement, StringView /*FromJid*/, std::int16_t eErrorCode,
                         StringView ErrorDescription) {
    if (XMLElement && XMLElement->Root().Is(u"message")) return;
    const bool isInClear = StartsWith(ErrorDescription, u"The password would go out in the clear");
    reason_ = Concat({ErrorDescription, isInClear ? u"; use --tls, or --plain" : u""});
    isSilence_ = eErrorCode == kNoAnswer;
    isRefused_ = eErrorCode != 0 && !isSilence_;
    if (wasOnline_ && !online_) End(ExitCode::network, u"Not connected", reason_);
}

// No login came of it.
void Connection::GiveUp(StringView reason) {
    if (isSilence_) return End(ExitCode::silence, u"No login", u"the server has not answered in time");
    if (!isRefused_) return End(ExitCode::network, u"No login", reason);
    End(ExitCode::refused, newUser_ ? u"account refused" : u"login refused", reason);
}

// Before the login there are no other queries than the login's.
void Connection::OnIQError(const NodePtr& XMLElement, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                           StringView /*ErrorDescription*/) {
    if (Session().Active()) return;
    isRefused_ = true;
    GiveUp(Text(StanzaError::Of(XMLElement->Root()).Reason()));
}

void Connection::End(ExitCode code, const String& what, StringView reason) {
    if (Owner().IsQuitting()) return;
    StopDeadline();
    Owner().Fail(what, reason);
    Owner().Quit(code);
}

std::string Connection::State() const {
    if (online_) return "online, " + trust_.State(Session());
    if (!wasOnline_) return "connecting";
    const std::int32_t delay = Session().ReconnectDelay();
    return delay == 0 ? "offline, connecting" : fmt::format("offline, next attempt in {} s", delay);
}

// -- The traffic --

void Connection::OnIncomingXML(StringView XML) {
    if (!trust_.IsAccepted(Session()))
        return Distrust();  // a reconnection is judged here, before anything secret has gone out
    if (options_.xml) Show("xml-in", {{"xml", MaskSecrets(Text(XML))}});
}

void Connection::OnOutgoingXML(StringView XML) {
    if (options_.xml) Show("xml-out", {{"xml", MaskSecrets(Text(XML))}});
}

}  // namespace quorix::console
