// What the program can do, as text for the manual and for shells, made from the tables that it works by.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace quorix::console {

// `kind` is "markdown", "bash" or "zsh"; std::runtime_error for another.
std::string Reference(const CLI::App& app, const std::string& kind);

// The exit codes, for --help.
std::string ExitCodeHelp();

}  // namespace quorix::console
