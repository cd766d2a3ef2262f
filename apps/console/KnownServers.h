// The certificates that the user has accepted by hand, one for each server, kept between runs.
#pragma once

#include <string>

namespace quorix::console {

class KnownServers {
public:
    explicit KnownServers(std::string file) : file_(std::move(file)) {}

    // The SHA-256 fingerprint remembered for `server`, or "".
    std::string Fingerprint(const std::string& server) const;

    // False when it could not be written.
    bool Remember(const std::string& server, const std::string& fingerprint) const;

private:
    std::string file_;
};

}  // namespace quorix::console
