#include "tests/real/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

namespace quorix::real {
namespace {

void Require(int error, const std::string& what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// setpriv asks for the signal at the parent's end after it has changed the user, which would cancel it.
std::vector<std::string> CommandLine(const ProcessSetup& setup) {
    std::vector<std::string> line{"setpriv", "--pdeathsig=KILL"};
    if (geteuid() == 0 && !setup.user.empty()) {
        line.insert(line.end(), {"--reuid=" + setup.user, "--regid=" + setup.user, "--init-groups"});
    }
    line.emplace_back("env");
    for (const auto& [name, value] : setup.environment) line.push_back(name + "=" + value);
    line.insert(line.end(), setup.command.begin(), setup.command.end());
    return line;
}

}  // namespace

Process::Process(const ProcessSetup& setup) {
    auto line = CommandLine(setup);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, setup.folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 0, setup.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, setup.log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // Its own session, which Linux schedules as a group: a build at work beside the tests does not starve it.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    const int error =
        posix_spawnp(&pid_, line[0].c_str(), &actions, &attributes, Pointers(line).data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    Require(error, setup.command[0]);
}

bool Process::Running() {
    int status = 0;
    if (pid_ != 0 && waitpid(pid_, &status, WNOHANG) == pid_) {
        if (WIFEXITED(status)) exitCode_ = WEXITSTATUS(status);
        kill(-pid_, SIGKILL);
        pid_ = 0;
    }
    return pid_ != 0;
}

void Process::Signal(int number) const {
    if (pid_ != 0) kill(-pid_, number);
}

void Process::Stop() const {
    Signal(SIGSTOP);
    siginfo_t stopped;
    if (pid_ != 0) waitid(P_PID, static_cast<id_t>(pid_), &stopped, WSTOPPED | WEXITED | WNOWAIT);
}

void Process::Kill() {
    if (pid_ == 0) return;
    kill(-pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = 0;
}

}  // namespace quorix::real
