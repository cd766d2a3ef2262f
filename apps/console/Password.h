// Where the password comes from when it does not stand on the command line.
#pragma once

#include <optional>
#include <string>

namespace quorix::console {

// The first line of `file`; std::runtime_error when it cannot be read or is empty.
std::string PasswordFromFile(const std::string& file);

// Asks on the terminal, without showing what is typed. None without a terminal.
std::optional<std::string> AskPassword(const std::string& account);

}  // namespace quorix::console
