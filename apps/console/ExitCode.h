// What the program's end tells a script.
#pragma once

#include <string_view>

namespace quorix::console {

enum class ExitCode {
    success = 0,
    failed = 1,
    usage = 2,
    network = 3,
    refused = 4,
    untrusted = 5,
    silence = 6,
    replaced = 7,
};

struct ExitCodeText {
    ExitCode code;
    std::string_view help;
};

inline constexpr ExitCodeText kExitCodes[] = {
    {ExitCode::success, "everything was done"},
    {ExitCode::failed, "something that was asked for failed; standard error tells what"},
    {ExitCode::usage, "the command line or the configuration is wrong"},
    {ExitCode::network, "no connection: unknown host, refused, closed, lost"},
    {ExitCode::refused, "the server refused the login or the new account"},
    {ExitCode::untrusted, "the server's certificate is not trusted"},
    {ExitCode::silence, "no answer in time"},
    {ExitCode::replaced, "another login with the same resource has taken over"},
};

}  // namespace quorix::console
