// Where the console keeps what it keeps.
#pragma once

#include <string>

namespace quorix::console {

// ~/.config/quorix/console.toml, or where XDG_CONFIG_HOME says.
std::string ConfigFile();

// A file in ~/.local/state/quorix, or where XDG_STATE_HOME says; the folder is made, for the user alone.
std::string StateFile(const char* name);

}  // namespace quorix::console
