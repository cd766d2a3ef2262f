// What the command line, the configuration and the environment say.
#pragma once

#include <cstdint>
#include <string>

namespace quorix::console {

struct Options {
    enum class Task { chat, send, listen };

    std::string account;  // USER@SERVER[/RESOURCE] or the name of an account in the configuration
    std::string jid;      // the address, when the account has a name
    std::string domain;   // of the account
    std::string server;   // where to connect
    std::uint16_t port = 0;
    std::string user;
    std::string password;
    std::string passwordFile;
    std::string resource;
    std::string ca;
    std::string pin;
    std::string proxy;
    int timeout = 30;   // seconds from connecting to the login
    int reconnect = 5;  // seconds until the first attempt to connect again; 0: none
    bool tls = false;
    bool insecure = false;
    bool plain = false;
    bool remoteDns = false;
    bool newUser = false;
    bool classic = false;

    std::string script;
    bool xml = false;
    bool json = false;
    bool yes = false;
    bool bell = false;
    std::string color = "auto";
    std::string times = "auto";

    Task task = Task::chat;
    std::string recipient;
    std::string text;
    int count = 0;     // messages to listen for; 0: no limit
    int duration = 0;  // seconds to listen; 0: no limit
};

}  // namespace quorix::console
