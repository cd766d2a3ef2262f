#include "apps/console/Console.h"

#include <glib.h>
#include <openssl/x509.h>

#include <utility>

#include "apps/console/Mask.h"
#include "apps/console/Proxy.h"
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"

namespace quorix::console {

namespace {

constexpr std::int32_t kLinger = 1;  // seconds for answers to the last line of a script

gboolean ResumeTerminal(gpointer terminal) {
    static_cast<Terminal*>(terminal)->Resume();
    return G_SOURCE_REMOVE;
}

}  // namespace

String Arguments::Word() {
    std::size_t end = rest_.find(u' ');
    String word(rest_.substr(0, end));
    rest_ = end == StringView::npos ? StringView() : Trim(rest_.substr(end));
    return word;
}

Console::Console(Options options)
    : options_(std::move(options)),
      session_(cSession::Create()),
      chat_(std::make_shared<ChatDesk>(*this)),
      desk_(std::make_shared<ServiceDesk>(*this)) {}
Console::~Console() = default;

int Console::Run() {
    terminal_ = std::make_unique<Terminal>([this](const std::string& line) { TakeLine(TextFromUtf8(line)); },
                                           [this] { TakeEnd(); });
    session_->Advise(shared_from_this());
    session_->Advise(chat_);
    session_->Advise(desk_);
    ApplyOptions();
    Print(Concat({u"Connecting to ", session_->ServerAddress(), u" ..."}));
    session_->Connect(options_.newUser);
    if (options_.tls && session_->IsConnected() && !TrustsPeer()) {
        exitCode_ = 1;
        Quit();
    }
    MessageLoop::Run();
    session_->Unadvise(shared_from_this());
    terminal_.reset();
    return exitCode_;
}

void Console::ApplyOptions() {
    session_->ServerAddress(TextFromUtf8(options_.server));
    session_->Port(static_cast<std::int16_t>(options_.port));
    session_->username(WireFromBytes(options_.user));
    session_->Password(TextFromUtf8(options_.password));
    session_->Resource(TextFromUtf8(options_.resource));
    session_->UseSSL(options_.tls);
    session_->Socket()->SSLCAFile(TextFromUtf8(options_.ca));
    ApplyProxy();
}

void Console::ApplyProxy() {
    std::optional<Proxy> proxy = ParseProxy(options_.proxy);
    if (!proxy) return;
    session_->ProxyType(proxy->type);
    session_->ProxyHostname(TextFromUtf8(proxy->host));
    session_->ProxyPort(proxy->port);
    session_->ProxyAuthentication(proxy->withLogin ? KV_SocksUserPass : KV_SocksNoAuth);
    session_->ProxyUsername(WireFromBytes(proxy->user));
    session_->ProxyPassword(WireFromBytes(proxy->password));
    session_->ProxyUseRemoteDNS(options_.remoteDns);
}

// -- Trust --

String Console::PeerIdentity() const {
    const cSocketSSL& socket = *session_->Socket();
    return Concat({u"certificate of ", socket.SSLSubject(), u", issued by ", socket.SSLIssuer(), u": ",
                   WireFromBytes(X509_verify_cert_error_string(socket.SSLTrusted()))});
}

bool Console::IsPeerAccepted() const {
    bool trusted = session_->Socket()->SSLTrusted() == X509_V_OK;
    return !options_.tls || trusted || options_.insecure || PeerIdentity() == acceptedPeer_;
}

bool Console::TrustsPeer() {
    Print(Concat({u"TLS with ", session_->Socket()->SSLCipher(), u", ", PeerIdentity()}));
    if (IsPeerAccepted()) return true;
    Print(u"! The server is not trusted.");
    if (!terminal_->Ask("Go on all the same? [y/N] ")) return false;
    acceptedPeer_ = PeerIdentity();
    return true;
}

void Console::Print(StringView text) { terminal_->Print(Utf8FromText(text)); }

void Console::Quit() {
    quitting_ = true;
    session_->Disconnect();
    MessageLoop::Quit();
}

void Console::Wait(std::int32_t seconds) {
    terminal_->Pause();
    g_timeout_add_seconds(static_cast<guint>(seconds), ResumeTerminal, terminal_.get());
}

// A line that is no command goes nowhere: nobody should say in public what was meant for the program.
void Console::TakeLine(StringView line) {
    Arguments arguments(line);
    if (arguments.Empty()) return;
    String name = arguments.Word();
    for (const Command& command : Commands()) {
        if (command.name != name) continue;
        try {
            command.run(*this, arguments);
        } catch (const AutomationError& error) {
            Print(Concat({u"! ", error.Description()}));
        }
        return;
    }
    Print(Concat({u"! Unknown command ", name, u"; /help lists them."}));
}

void Console::TakeEnd() {
    auto quit = [](gpointer console) -> gboolean {
        static_cast<Console*>(console)->Quit();
        return G_SOURCE_REMOVE;
    };
    g_timeout_add_seconds(kLinger, quit, this);
}

// -- The connection --

void Console::OnAuthorized() {
    Print(Concat({u"Logged in as ", Readable(session_->MyJid()), u"/", session_->Resource(), u"."}));
    if (!std::exchange(loggedIn_, true)) terminal_->Resume();
    session_->FetchRoster();  // only who has it is told of changes, and by some servers of answers
    session_->SendMyPresence();
}

void Console::OnNewUserCreated() {
    Print(u"Account created; logging in with it.");
    accountCreated_ = true;
}

void Console::OnDisConnected() {
    if (quitting_ || std::exchange(accountCreated_, false)) return;
    Print(u"Disconnected.");
    if (loggedIn_) return;
    exitCode_ = 1;
    MessageLoop::Quit();
}

void Console::OnError(const NodePtr& /*XMLElement*/, StringView FromJid, std::int16_t eErrorCode,
                      StringView ErrorDescription) {
    Print(Concat({u"! Error ", ToString(eErrorCode), u" from ", Readable(FromJid), u": ",
                  Readable(ErrorDescription)}));
}

void Console::OnIQError(const NodePtr& /*XMLElement*/, StringView FromJid, std::int16_t eErrorCode,
                        StringView ErrorDescription) {
    Print(Concat({u"! Query failed (", ToString(eErrorCode), u") at ", Readable(FromJid), u": ",
                  Readable(ErrorDescription)}));
}

void Console::OnSocketError(const NodePtr& /*XMLElement*/, StringView Description, std::int16_t Code) {
    Print(Concat({u"! Network error ", ToString(Code), u": ", Description}));
    if (loggedIn_) return;
    exitCode_ = 1;
    MessageLoop::Quit();
}

// A reconnection is judged here: nothing secret has been sent when the server's first text arrives.
void Console::OnIncomingXML(StringView XML) {
    if (!IsPeerAccepted()) {
        Print(Concat({u"! Another server answers, which is not trusted, ", PeerIdentity()}));
        return Quit();
    }
    if (options_.xml) Print(Concat({u"<< ", Readable(MaskSecrets(XML))}));
}

void Console::OnOutgoingXML(StringView XML) {
    if (options_.xml) Print(Concat({u">> ", Readable(MaskSecrets(XML))}));
}

}  // namespace quorix::console
