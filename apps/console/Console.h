// The console client: prints what happens on one session, and does what is typed.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/console/ChatDesk.h"
#include "apps/console/Options.h"
#include "apps/console/ServiceDesk.h"
#include "apps/console/Terminal.h"
#include "quorix/session/cSession.h"

namespace quorix::console {

class Console;

// What stands behind the command's name on its line: words first, free text last.
class Arguments {
public:
    explicit Arguments(StringView text) : rest_(Trim(text)) {}
    String Word();
    String Rest() const { return String(rest_); }
    bool Empty() const { return rest_.empty(); }

private:
    StringView rest_;
};

struct Command {
    StringView name;
    StringView arguments;
    StringView help;
    void (*run)(Console& console, Arguments arguments);
};

class Console : public SessionEvents, public std::enable_shared_from_this<Console> {
public:
    explicit Console(Options options);
    ~Console() override;

    // Connects and serves until /quit, the end of input, or a refused login. The process's exit code.
    int Run();

    cSession& Session() { return *session_; }
    ChatDesk& Chat() { return *chat_; }
    ServiceDesk& Desk() { return *desk_; }
    void Print(StringView text);
    void Quit();

    // Input waits meanwhile: scripts need time to see answers.
    void Wait(std::int32_t seconds);

    void OnAuthorized() override;
    void OnNewUserCreated() override;
    void OnDisConnected() override;
    void OnError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                 StringView ErrorDescription) override;
    void OnSocketError(const NodePtr& XMLElement, StringView Description, std::int16_t Code) override;
    void OnIQError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                   StringView ErrorDescription) override;
    void OnIncomingXML(StringView XML) override;
    void OnOutgoingXML(StringView XML) override;

private:
    void ApplyOptions();
    void ApplyProxy();
    bool IsPeerAccepted() const;
    bool TrustsPeer();
    String PeerIdentity() const;
    void TakeLine(StringView line);
    void TakeEnd();

    Options options_;
    std::shared_ptr<cSession> session_;
    std::shared_ptr<ChatDesk> chat_;
    std::shared_ptr<ServiceDesk> desk_;
    std::unique_ptr<Terminal> terminal_;
    String acceptedPeer_;  // the one that the user did not mind
    bool loggedIn_ = false;
    bool quitting_ = false;
    bool accountCreated_ = false;  // the connection ends now, and the login follows
    int exitCode_ = 0;
};

// What chat and the services offer. Commands has them too.
const std::vector<Command>& ChatCommands();
const std::vector<Command>& ServiceCommands();

// All commands, in the order in which /help lists them.
const std::vector<Command>& Commands();

}  // namespace quorix::console
