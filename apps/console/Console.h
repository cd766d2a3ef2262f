// The console client: one session, what is typed, and what is shown.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "apps/console/AccountDesk.h"
#include "apps/console/AnswerDesk.h"
#include "apps/console/ChatDesk.h"
#include "apps/console/Connection.h"
#include "apps/console/ContactDesk.h"
#include "apps/console/ExitCode.h"
#include "apps/console/Interpreter.h"
#include "apps/console/Options.h"
#include "apps/console/Output.h"
#include "apps/console/RoomDesk.h"
#include "apps/console/ServiceDesk.h"
#include "apps/console/Terminal.h"

namespace quorix::console {

class Console {
public:
    explicit Console(Options options);
    ~Console();

    // Connects and serves until /quit, the end of input, or an end that no reconnection mends.
    ExitCode Run();

    cSession& Session() { return *session_; }
    Connection& Line() { return *line_; }
    ChatDesk& Chat() { return *chat_; }
    ContactDesk& Contacts() { return *contacts_; }
    RoomDesk& Rooms() { return *rooms_; }
    ServiceDesk& Services() { return *services_; }
    AccountDesk& Account() { return *account_; }

    // -- Telling --

    void Show(std::string_view event, const Fields& fields);
    void Notice(const std::string& text) { Show("notice", {{"text", text}}); }
    void Usage(const std::string& text) { Show("usage", {{"text", text}}); }
    void Fail(const String& what, StringView reason);
    // With the code, the condition and the text of the error in `stanza`.
    void Refused(const String& what, const NodePtr& stanza);
    // A value of a record or an event, as text.
    String Text(StringView value) const;

    // -- Asking --

    bool IsInteractive() const { return terminal_->IsInteractive(); }
    // Yes or no; in a script no.
    void Ask(const std::string& question, const std::function<void(bool yes)>& then);
    // The same before a command; --yes answers for all of them.
    void Confirm(const std::string& question, const std::function<void(bool yes)>& then);
    void AskSecret(const std::string& question, const std::function<void(const String& answer)>& then);
    void Remember(const std::string& line) { terminal_->Remember(line); }

    // -- Going on --

    void OnReady();
    void OnLost();
    // Input waits meanwhile: scripts need time to see answers.
    void Wait(int seconds);
    // An answer to `command` is awaited; the answer's end ends the wait, and so does what is shown but a
    // list.
    void WaitFor(std::string_view command);
    void EndWait();
    void Quit(ExitCode code = ExitCode::success);
    bool IsQuitting() const { return quitting_; }
    // Quits when what was sent before has been answered.
    void Finish();

private:
    class Signals;

    void DoTask();
    void Listen();
    void CountMessage();
    void UpdateInput();
    void UpdateStatus();

    Options options_;
    std::shared_ptr<cSession> session_;
    std::unique_ptr<Terminal> terminal_;
    std::unique_ptr<Output> output_;
    Interpreter interpreter_{*this};
    std::shared_ptr<Connection> line_;
    std::shared_ptr<ChatDesk> chat_;
    std::shared_ptr<ContactDesk> contacts_;
    std::shared_ptr<RoomDesk> rooms_;
    std::shared_ptr<ServiceDesk> services_;
    std::shared_ptr<AccountDesk> account_;
    std::shared_ptr<AnswerDesk> answers_;
    std::string awaited_;
    std::int64_t awaitedSince_ = 0;  // microseconds of the system's steady clock
    int listed_ = 0;                 // entries of a list since then
    int heard_ = 0;
    bool waiting_ = false;
    bool quitting_ = false;
    ExitCode exitCode_ = ExitCode::success;
};

}  // namespace quorix::console
