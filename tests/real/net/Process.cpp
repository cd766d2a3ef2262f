#include "tests/real/net/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <thread>

#include "quorix/platform/MessageLoop.h"

extern char** environ;

namespace quorix::testing_real {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint16_t kFirstPort = 20000;
constexpr std::uint16_t kLastPort = 31999;
constexpr std::int32_t kLookInterval = 10;  // milliseconds

// Whether a socket could be bound or connected to the port.
bool Try(bool (*attempt)(Environment&, SocketId, std::uint16_t), std::uint16_t port) {
    Environment& environment = Environment::Current();
    NewSocket made = environment.CreateSocket();
    bool done = attempt(environment, made.id, port);
    environment.Close(made.id);
    return done;
}

bool CanBind(Environment& environment, SocketId socket, std::uint16_t port) {
    return environment.Bind(socket, port, true) == SOCKERR_None;
}

bool CanConnect(Environment& environment, SocketId socket, std::uint16_t port) {
    return environment.Connect(socket, {0x7F000001, port}) == SOCKERR_None;
}

}  // namespace

Folder::Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorix-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Write(const std::string& name, const std::string& contents) const {
    std::ofstream(path_ / name, std::ios::binary) << contents;
    return (path_ / name).string();
}

std::string Folder::Read(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Process::Process(const Folder& folder, const std::string& name, const std::vector<std::string>& command,
                 const std::string& input) {
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::string log = (folder.Path() / (name + ".log")).string();
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
    if (posix_spawnp(&pid_, arguments[0], &files, nullptr, arguments.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&files);
}

Process::~Process() {
    if (!IsRunning()) return;
    Signal(SIGCONT);
    Signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool Process::IsRunning() {
    if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == pid_) pid_ = -1;
    return pid_ > 0;
}

void Process::Signal(int number) const {
    if (pid_ > 0) kill(pid_, number);
}

std::uint16_t FreePort() {
    static std::mt19937 random(static_cast<unsigned>(getpid()));
    std::uniform_int_distribution<unsigned> ports(kFirstPort, kLastPort);
    for (;;) {
        auto port = static_cast<std::uint16_t>(ports(random));
        if (Try(CanBind, port)) return port;
    }
}

bool WaitForPort(std::uint16_t port) {
    auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!Try(CanConnect, port)) {
        if (Clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(kLookInterval));
    }
    return true;
}

bool RunUntil(const std::function<bool()>& done, int seconds) {
    auto deadline = Clock::now() + std::chrono::seconds(seconds);
    TimerId timer = Environment::Current().SetTimer(kLookInterval, [] { MessageLoop::Quit(); });
    while (!done() && Clock::now() < deadline) MessageLoop::Run();
    Environment::Current().KillTimer(timer);
    return done();
}

}  // namespace quorix::testing_real
