// A session's day on the deterministic environment: a refused connection, a new account, a login, a stanza of
// each kind, everything that an application sends, the stream's end. Undisturbed, it raises each of the 45
// events.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "testkit/DeterministicEnvironment.h"
#include "testkit/EventRecorder.h"

namespace quorix::testkit {

inline constexpr std::string_view kStreamHeader = "<stream:stream id='s1' from='s' xmlns='jabber:client'>";

// From a server to a client that has logged in, in an order that raises everything they can.
extern const std::vector<std::string_view> kStanzas;

class Day {
public:
    explicit Day(eMode mode);

    // Goes on to its end whatever a hook of `events` does meanwhile, also without a session.
    void Run();

    // Lets go of the session. True when nothing of it is left in the environment.
    bool LeavesNothing();

    DeterministicEnvironment environment;
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<EventRecorder> events = std::make_shared<EventRecorder>();

private:
    void Connect(bool newUser);
    void SendEverything();
    void Say(std::string_view bytes);
};

}  // namespace quorix::testkit
