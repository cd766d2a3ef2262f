#include "apps/console/Folders.h"

#include <glib.h>

#include <filesystem>

namespace quorix::console {

std::string ConfigFile() {
    return (std::filesystem::path(g_get_user_config_dir()) / "quorix/console.toml").string();
}

std::string StateFile(const char* name) {
    const auto folder = std::filesystem::path(g_get_user_state_dir()) / "quorix";
    g_mkdir_with_parents(folder.c_str(), 0700);
    return (folder / name).string();
}

}  // namespace quorix::console
