// What the examples share: the account from the command line, a line to print, and an end with a code.
//
// A password among the arguments can be seen by others on the machine: read yours from a file.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/Timer.h"
#include "quorix/session/cSession.h"

namespace example {

using namespace quorix;

// The arguments as text. Ends the program with 2 when they are not as many as `usage` names.
inline std::vector<String> Arguments(int count, char** values, const std::string& usage) {
    if (std::count(usage.begin(), usage.end(), ' ') + 1 != count - 1) {
        std::cerr << values[0] << " " << usage << "\n";
        std::exit(2);
    }
    std::vector<String> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(TextFromUtf8(values[i]));
    return arguments;
}

// A session for the first four of them, HOST PORT USER PASSWORD, not connected yet.
inline std::shared_ptr<cSession> SessionOf(const std::vector<String>& arguments, StringView resource) {
    auto session = cSession::Create();
    session->Mode(KV_Modern);
    session->ServerAddress(arguments[0]);
    session->Port(static_cast<std::int16_t>(std::stoi(Utf8FromText(arguments[1]))));
    session->username(arguments[2]);
    session->Password(arguments[3]);
    session->Resource(resource);
    return session;
}

inline void Say(std::initializer_list<StringView> parts) {
    std::cout << Utf8FromText(Concat(parts)) << std::endl;
}

struct Ending {
    bool isReached = false;
    int code = 0;
};
inline thread_local Ending ending;

inline void Finish(int code) {
    ending = {true, code};
    MessageLoop::Quit();
}

// Runs the thread's loop until Finish, and returns its code. With `seconds`, it finishes with 1 after so many.
inline int Run(std::int32_t seconds = 0) {
    Timer deadline;
    if (seconds > 0) deadline.Start(seconds * 1000, [] { Finish(1); });
    if (!ending.isReached) MessageLoop::Run();
    return ending.code;
}

}  // namespace example
