#include "apps/console/KnownServers.h"

#include <glib.h>

#include <memory>

namespace quorix::console {

namespace {

constexpr const char* kGroup = "fingerprints";
using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

KeyFile Load(const std::string& file) {
    KeyFile keys(g_key_file_new(), g_key_file_free);
    g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
    return keys;
}

}  // namespace

std::string KnownServers::Fingerprint(const std::string& server) const {
    const KeyFile keys = Load(file_);
    const std::unique_ptr<char, decltype(&g_free)> value(
        g_key_file_get_string(keys.get(), kGroup, server.c_str(), nullptr), g_free);
    return value ? std::string(value.get()) : std::string();
}

bool KnownServers::Remember(const std::string& server, const std::string& fingerprint) const {
    const KeyFile keys = Load(file_);
    g_key_file_set_string(keys.get(), kGroup, server.c_str(), fingerprint.c_str());
    return g_key_file_save_to_file(keys.get(), file_.c_str(), nullptr) != 0;
}

}  // namespace quorix::console
