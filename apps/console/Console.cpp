#include "apps/console/Console.h"

#include <fmt/format.h>
#include <glib-unix.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>

#include "apps/console/Clean.h"
#include "apps/console/Folders.h"
#include "apps/console/StanzaError.h"
#include "apps/console/Text.h"
#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"

namespace quorix::console {

namespace {

constexpr unsigned kLinger = 1;                // seconds for answers to the last line of a script
constexpr std::int64_t kPatience = 2'000'000;  // microseconds before the status tells of a wait

bool Chosen(const std::string& choice, bool automatic) {
    return choice == "auto" ? automatic : choice == "always";
}

OutputStyle StyleOf(const Options& options, bool onTerminal) {
    const char* noColor = std::getenv("NO_COLOR");
    const char* kind = std::getenv("TERM");
    const bool canColor = onTerminal && (noColor == nullptr || *noColor == '\0') && kind != nullptr &&
                          std::string_view(kind) != "dumb";
    return {options.json,
            Chosen(options.times, onTerminal),
            Chosen(options.color, canColor),
            options.bell && onTerminal,
            options.task != Options::Task::chat,
            options.task == Options::Task::send};
}

// Calls `then` once after `seconds`, from the message loop.
void After(unsigned seconds, std::function<void()> then) {
    auto run = [](gpointer call) -> gboolean {
        (*static_cast<std::function<void()>*>(call))();
        return G_SOURCE_REMOVE;
    };
    auto free = [](gpointer call) { delete static_cast<std::function<void()>*>(call); };
    g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, seconds, run, new std::function<void()>(std::move(then)),
                               free);
}

}  // namespace

// What ends a program from outside says good-bye first, and the terminal is left as it was.
class Console::Signals {
public:
    explicit Signals(Console& console) {
        auto quit = [](gpointer self) -> gboolean {
            static_cast<Console*>(self)->Quit();
            return G_SOURCE_CONTINUE;
        };
        for (std::size_t index = 0; index < kSignals.size(); ++index) {
            sources_[index] = g_unix_signal_add(kSignals[index], quit, &console);
        }
    }
    ~Signals() {
        for (guint source : sources_) g_source_remove(source);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    static constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
    std::array<guint, kSignals.size()> sources_{};
};

Console::Console(Options options)
    : options_(std::move(options)),
      session_(cSession::Create()),
      line_(std::make_shared<Connection>(*this, options_)),
      chat_(std::make_shared<ChatDesk>(*this)),
      contacts_(std::make_shared<ContactDesk>(*this)),
      rooms_(std::make_shared<RoomDesk>(*this)),
      services_(std::make_shared<ServiceDesk>(*this)),
      account_(std::make_shared<AccountDesk>(*this)),
      answers_(std::make_shared<AnswerDesk>(*this)) {}
Console::~Console() = default;

ExitCode Console::Run() {
    terminal_ =
        Terminal::Create({[this](const std::string& line) { interpreter_.TakeLine(TextFromUtf8(line)); },
                          [this] { IsInteractive() ? Quit() : Finish(); },
                          [this](const std::string& before, const std::string& word) {
                              return interpreter_.Complete(before, word);
                          }},
                         options_.task == Options::Task::chat ? StateFile("history") : "");
    const bool onTerminal = IsInteractive() || isatty(STDOUT_FILENO) != 0;
    output_ = std::make_unique<Output>(*terminal_, StyleOf(options_, onTerminal));
    const Signals signals(*this);
    const std::shared_ptr<SessionEvents> sinks[] = {line_,     chat_,    contacts_, rooms_,
                                                    services_, account_, answers_};
    for (const auto& sink : sinks) session_->Advise(sink);
    UpdateInput();
    auto tick = [](gpointer self) -> gboolean {
        static_cast<Console*>(self)->UpdateStatus();
        return G_SOURCE_CONTINUE;
    };
    const guint clock = IsInteractive() ? g_timeout_add_seconds(1, tick, this) : 0;
    line_->Open();
    if (!quitting_) MessageLoop::Run();
    if (clock != 0) g_source_remove(clock);
    for (const auto& sink : sinks) session_->Unadvise(sink);
    terminal_.reset();
    return exitCode_;
}

// -- Telling --

void Console::Show(std::string_view event, const Fields& fields) {
    const EventKind kind = FormOf(event).kind;
    const bool isTraffic = event.starts_with("xml-") || event == "presence" || event == "message";
    if (kind == EventKind::list) {
        ++listed_;
    } else if (!isTraffic && kind != EventKind::echo && kind != EventKind::notice) {
        EndWait();
    }
    output_->Show(event, fields);
    if (event == "message") CountMessage();
    UpdateStatus();
}

void Console::Fail(const String& what, StringView reason) {
    Show("error", {{"what", what}, {"reason", reason}});
}

void Console::Refused(const String& what, const NodePtr& stanza) {
    const StanzaError error = StanzaError::Of(stanza->Root());
    Show("error", {{"what", what},
                   {"reason", Text(error.Reason())},
                   {"code", error.code},
                   {"condition", error.condition},
                   {"message", Text(error.text)}});
}

String Console::Text(StringView value) const { return Readable(*session_, value); }

void Console::UpdateStatus() {
    if (!IsInteractive()) return;
    Chats& chats = chat_->All();
    const auto* current = chats.Current();
    const std::string partner = current == nullptr ? "" : Clean(Utf8FromText(current->jid), Lines::one);
    terminal_->Prompt(partner.substr(0, partner.find('@')) +
                      (current != nullptr && current->typing ? " (typing)" : "") + "> ");
    std::string status = " " + line_->State();  // a narrow terminal shows the beginning
    if (chats.Unread() > 0) status += fmt::format(" | {} unread", chats.Unread());
    const std::int64_t waited = g_get_monotonic_time() - awaitedSince_;
    if (!awaited_.empty() && listed_ > 0) {
        status += fmt::format(" | {}: {}", awaited_, listed_);
    } else if (!awaited_.empty() && waited > kPatience) {
        status += fmt::format(" | {} {} s", awaited_, waited / G_USEC_PER_SEC);
    }
    status += " | " + Clean(Utf8FromText(Text(session_->MyJid())), Lines::one);
    terminal_->Status(status + " ");
}

// -- Asking --

void Console::Ask(const std::string& question, const std::function<void(bool yes)>& then) {
    terminal_->Ask(question + " [y/N] ", false, [then](const std::optional<std::string>& answer) {
        then(answer && (*answer == "y" || *answer == "Y" || *answer == "yes"));
    });
}

void Console::Confirm(const std::string& question, const std::function<void(bool yes)>& then) {
    if (options_.yes) return then(true);
    Ask(question, then);
}

void Console::AskSecret(const std::string& question, const std::function<void(const String& answer)>& then) {
    terminal_->Ask(question, true, [then](const std::optional<std::string>& answer) {
        then(TextFromUtf8(answer.value_or("")));
    });
}

// -- Going on --

void Console::OnReady() {
    if (options_.task != Options::Task::send) {
        contacts_->Fetch(false);  // only who has the list is told of changes, and by some servers of answers
        session_->SendMyPresence();
    }
    UpdateInput();
    DoTask();
    interpreter_.Release();
}

void Console::OnLost() { UpdateInput(); }

void Console::DoTask() {
    if (options_.task == Options::Task::send) {
        chat_->Send(TextFromUtf8(options_.recipient), TextFromUtf8(options_.text));
        Finish();
    }
    if (options_.task == Options::Task::listen && options_.duration > 0) {
        After(static_cast<unsigned>(std::exchange(options_.duration, 0)),
              [this] { Quit(options_.count > 0 ? ExitCode::failed : ExitCode::success); });
    }
}

void Console::CountMessage() {
    if (options_.task == Options::Task::listen && ++heard_ == options_.count) Quit();
}

// A script waits for the connection; a person can always quit.
void Console::UpdateInput() {
    const bool takesLines = options_.task == Options::Task::chat && !waiting_;
    const bool ready = IsInteractive() || line_->IsOnline();
    takesLines&& ready ? terminal_->Resume() : terminal_->Pause();
}

void Console::Wait(int seconds) {
    waiting_ = true;
    UpdateInput();
    After(static_cast<unsigned>(seconds), [this] {
        waiting_ = false;
        UpdateInput();
    });
}

void Console::WaitFor(std::string_view command) {
    awaited_ = command;
    awaitedSince_ = g_get_monotonic_time();
    listed_ = 0;
}

void Console::EndWait() { awaited_.clear(); }

void Console::Quit(ExitCode code) {
    if (std::exchange(quitting_, true)) return;
    const bool failed = !IsInteractive() && output_->HadError();
    exitCode_ = code == ExitCode::success && failed ? ExitCode::failed : code;
    session_->Disconnect();
    MessageLoop::Quit();
}

void Console::Finish() {
    After(kLinger, [this] { Quit(); });
}

}  // namespace quorix::console
