// What the command line says.
#pragma once

#include <cstdint>
#include <string>

namespace quorix::console {

struct Options {
    std::string server;
    std::uint16_t port = 5222;
    std::string user;
    std::string password;
    std::string resource = "console";
    bool xml = false;
    bool newUser = false;
};

}  // namespace quorix::console
