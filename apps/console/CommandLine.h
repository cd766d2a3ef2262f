// The command line, the configuration file and the environment.
#pragma once

#include <optional>
#include <string>

#include "apps/console/ExitCode.h"
#include "apps/console/Options.h"

namespace CLI {
class App;
}

namespace quorix::console {

struct CommandLineResult {
    std::optional<Options> options;  // none when the program has nothing more to do
    ExitCode exitCode = ExitCode::success;
};

// Says itself what is wrong, and asks for the password when nothing tells it. std::runtime_error for a file
// that cannot be read.
CommandLineResult ReadCommandLine(int argc, char** argv);

// The options and one-shot commands, bound to `options`.
void Declare(CLI::App& app, Options& options);

}  // namespace quorix::console
