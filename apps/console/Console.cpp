#include "apps/console/Console.h"

#include <glib.h>

#include <utility>

#include "apps/console/Mask.h"
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"

namespace quorix::console {

namespace {

constexpr std::int32_t kLinger = 1;  // seconds for answers to the last line of a script

String Readable(StringView wire) { return TextFromUtf8(BytesFromWire(wire)); }

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
      desk_(std::make_shared<ServiceDesk>(*this)) {}
Console::~Console() = default;

int Console::Run() {
    terminal_ = std::make_unique<Terminal>([this](const std::string& line) { TakeLine(TextFromUtf8(line)); },
                                           [this] { TakeEnd(); });
    session_->Advise(shared_from_this());
    session_->Advise(desk_);
    ApplyOptions();
    Print(Concat({u"Connecting to ", session_->ServerAddress(), u" ..."}));
    session_->Connect(options_.newUser);
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
    session_->SendMyPresence();
}

void Console::OnDisConnected() {
    if (quitting_) return;
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

void Console::OnIncomingXML(StringView XML) {
    if (options_.xml) Print(Concat({u"<< ", Readable(MaskSecrets(XML))}));
}

void Console::OnOutgoingXML(StringView XML) {
    if (options_.xml) Print(Concat({u">> ", Readable(MaskSecrets(XML))}));
}

// -- Chat --

void Console::OnMessage(const std::shared_ptr<cMessage>& Message) {
    if (!Message->Body().empty()) Print(Concat({Readable(Message->FromJid()), u": ", Message->Body()}));
}

void Console::OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                         StringView /*ShowType*/, std::int32_t /*ItemType*/, const NodePtr& /*XMLElement*/) {
    Print(Concat({u"* ", PresenceItem->JID(), u"/", PresenceItem->Resource(),
                  bAvailable ? u" is online " : u" is offline ", PresenceItem->Status()}));
}

void Console::OnRosterItem(const std::shared_ptr<cRosterItem>& RosterItem,
                           const std::shared_ptr<cPresenceItem>& PresenceItem,
                           const NodePtr& /*XMLElement*/) {
    Print(Concat(
        {PresenceItem ? u"+ " : u"- ", RosterItem->NickName(), u" <", Readable(RosterItem->JID()), u">"}));
}

}  // namespace quorix::console
