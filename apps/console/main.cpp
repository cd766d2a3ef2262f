// The console client.
#include <fmt/core.h>

#include <clocale>
#include <cstdio>
#include <exception>

#include "apps/console/CommandLine.h"
#include "apps/console/Console.h"

int main(int argc, char** argv) try {
    using namespace quorix::console;
    std::setlocale(LC_CTYPE, "");  // numbers stay as they are
    const CommandLineResult asked = ReadCommandLine(argc, argv);
    if (!asked.options) return static_cast<int>(asked.exitCode);
    return static_cast<int>(Console(*asked.options).Run());
} catch (const std::exception& error) {
    fmt::print(stderr, "quorix-console: {}\n", error.what());
    return static_cast<int>(quorix::console::ExitCode::usage);
}
