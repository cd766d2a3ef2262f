// A program that a test runs beside itself, in a session and process group of its own.
//
// Ownership: the object owns the process. The group is killed when the object ends, and the program by the
// system when the thread that started it ends first, so a test that crashes leaves nothing behind.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace quorix::real {

struct ProcessSetup {
    std::vector<std::string> command;
    std::map<std::string, std::string> environment;  // added to the test's own
    std::string folder;                              // current folder of the program
    std::string log;                                 // file that takes what it prints, appended
    std::string user = {};                           // account it runs as; the test's own unless that is root
    std::string input = "/dev/null";                 // file that it reads
};

class Process {
public:
    explicit Process(const ProcessSetup& setup);  // std::system_error when it cannot be started
    ~Process() { Kill(); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool Running();
    int ExitCode() const { return exitCode_; }  // -1 while it runs, and after a signal
    void Signal(int number) const;
    void Stop() const;  // SIGSTOP to the group; returns when the program stands still
    void Kill();        // SIGKILL to the group, and waits for the program's end

private:
    pid_t pid_ = 0;
    int exitCode_ = -1;
};

}  // namespace quorix::real
