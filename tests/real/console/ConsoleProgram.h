// The console client as a program of its own, fed by a pipe, or on a terminal that a test can look at.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "testkit/TemporaryFolder.h"
#include "tests/real/Process.h"

namespace quorix::real {

// Options that log `user` in at a server on loopback.
std::vector<std::string> LoginOptions(int port, const std::string& user, std::vector<std::string> more = {});

// Fed by a pipe. What it prints to both outputs is in one text; its configuration and state are its own.
class ConsoleProgram {
public:
    explicit ConsoleProgram(std::vector<std::string> arguments,
                            std::map<std::string, std::string> environment = {});
    ~ConsoleProgram();
    ConsoleProgram(const ConsoleProgram&) = delete;
    ConsoleProgram& operator=(const ConsoleProgram&) = delete;

    void Type(const std::string& line) const;

    // Waits for `text` behind what was shown before.
    bool Shows(const std::string& text);

    // What it has printed when it ended, after these lines and /quit.
    std::string OutputAfter(const std::string& lines);
    // Waits for its end. The exit code, or -1.
    int ExitCode();
    std::string Output() const { return folder_.Read("output"); }

private:
    testkit::TemporaryFolder folder_;
    int input_;
    std::unique_ptr<Process> program_;
    std::size_t shown_ = 0;
};

}  // namespace quorix::real
