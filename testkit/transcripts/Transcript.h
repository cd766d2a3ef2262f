// Plays the server of an application's own sessions from a text file, and says where something else happens
// than is written there. docs/transcripts.md has the format, and examples/echo_bot_test.cpp is such a test.
//
// Threads: all of it happens on the calling thread, within the call.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix::transcripts {

// Something that steps let the application do, or ask it: takes the arguments as texts, numbers in decimal.
// What it returns, a step may compare with a text. An AutomationError that it throws is what `fails with`
// expects.
using Action = std::function<String(const std::vector<String>& arguments)>;

// What one scenario is played on. It begins without a connection, on the clock and the network of its own.
class Stage {
public:
    // Steps call the session `name`, and tell each of its events. Sinks that are advised later hear of an
    // event when the steps below it have been played, so add the session before the application advises its
    // own.
    virtual void Add(const std::string& name, const std::shared_ptr<cSession>& session) = 0;

    // Steps call it by its name, which has a dot in it: `bot.Greet("romeo")` for "bot.Greet".
    virtual void Add(const std::string& name, Action action) = 0;

    virtual testkit::DeterministicEnvironment& Network() = 0;

protected:
    ~Stage() = default;
};

// Makes an application anew, for one scenario, at whose end it is let go of.
using Begin = std::function<std::shared_ptr<void>(Stage& stage)>;

// Plays each scenario of the file. Returns what went wrong, a line for each that failed, with the file and
// the line where it did; "" when all happened as it is written. Throws std::runtime_error for a file that
// cannot be read.
std::string Play(const std::filesystem::path& file, const Begin& begin);

}  // namespace quorix::transcripts
