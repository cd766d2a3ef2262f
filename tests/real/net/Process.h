// A program that a test starts and stops by its own pid, on loopback ports of its choice.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace quorix::testing_real {

// A folder that is removed when the test ends.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::string Write(const std::string& name, const std::string& contents) const;
    std::string Read(const std::string& name) const;

private:
    std::filesystem::path path_;
};

class Process {
public:
    // Output and errors go to "<name>.log" in `folder`; input comes from the file `input`.
    Process(const Folder& folder, const std::string& name, const std::vector<std::string>& command,
            const std::string& input = "/dev/null");
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool IsRunning();
    void Signal(int number) const;

private:
    pid_t pid_ = -1;
};

// A port that nobody listens on, below the range that the system hands out.
std::uint16_t FreePort();

// Waits until somebody listens on the port.
bool WaitForPort(std::uint16_t port);

// Runs the thread's message loop until `done` or, after `seconds`, gives up.
bool RunUntil(const std::function<bool()>& done, int seconds = 10);

}  // namespace quorix::testing_real
