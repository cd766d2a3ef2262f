#include "tests/real/RealServer.h"

#include <pwd.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "tests/real/Loopback.h"

namespace quorix::real {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// A start takes 2 s on an idle machine, and can take over 30 on a busy one.
constexpr auto kPatience = 120s;

fs::path TemporaryFolder() {
    std::string name = fs::temp_directory_path() / "quorix-server-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("No temporary folder: " + name);
    return name;
}

}  // namespace

RealServer::RealServer(std::string user, const Certificate* certificate)
    : user_(std::move(user)),
      folder_(TemporaryFolder()),
      port_(FreePort()),
      tls_port_(certificate == nullptr ? 0 : FreePort()) {
    if (certificate == nullptr) return;
    certificate_ = {folder_ / "chain.pem", folder_ / "key.pem"};
    fs::copy_file(certificate->chain, certificate_.chain);
    fs::copy_file(certificate->key, certificate_.key);
}

RealServer::~RealServer() {
    processes_.clear();
    ending_.clear();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void RealServer::Start() {
    if (!processes_.empty()) return;
    ending_.clear();
    if (!configured_) Configure();
    configured_ = true;
    // What an earlier run wrote must not be taken for this one's.
    for (const auto& log : Logs()) fs::remove(log);
    GiveToUser();
    try {
        Launch();
        Await("an answer to a query", [this] { return AnswersQuery(port_); });
    } catch (...) {
        processes_.clear();
        throw;
    }
}

void RealServer::Kill() { processes_.clear(); }

void RealServer::ShutDown() {
    if (processes_.empty()) return;
    ending_ = std::exchange(processes_, {});
    for (const auto& process : ending_) process->Signal(SIGTERM);
}

void RealServer::Freeze() const {
    for (const auto& process : processes_) process->Stop();
}

void RealServer::Thaw() const {
    for (const auto& process : processes_) process->Signal(SIGCONT);
}

std::string RealServer::Contents(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

void RealServer::Write(const std::string& name, const std::string& text) const {
    if (!(std::ofstream(folder_ / name) << text)) throw std::runtime_error("Cannot write " + File(name));
}

void RealServer::Run(std::vector<std::string> command, std::map<std::string, std::string> environment) {
    environment["HOME"] = folder_;
    processes_.push_back(std::make_unique<Process>(
        ProcessSetup{std::move(command), std::move(environment), folder_, File("output.log"), user_}));
}

void RealServer::Await(const std::string& what, const std::function<bool()>& reached) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!reached()) {
        for (const auto& process : processes_) {
            if (!process->Running()) Fail("A program of the server ended while waiting for " + what);
        }
        if (std::chrono::steady_clock::now() > end) Fail("Waited too long for " + what);
        std::this_thread::sleep_for(50ms);
    }
}

void RealServer::Fail(const std::string& what) const {
    std::string message = what;
    for (const auto& log : Logs()) message += "\n" + log.string() + ":\n" + Contents(log);
    throw std::runtime_error(message);
}

std::vector<fs::path> RealServer::Logs() const {
    std::vector<fs::path> logs;
    for (const auto& file : fs::directory_iterator(folder_)) {
        if (file.path().extension() == ".log") logs.push_back(file);
    }
    return logs;
}

void RealServer::GiveToUser() const {
    const passwd* account = geteuid() == 0 ? getpwnam(user_.c_str()) : nullptr;
    if (account == nullptr) return;
    auto give = [account](const fs::path& path) {
        if (lchown(path.c_str(), account->pw_uid, account->pw_gid) != 0) {
            throw std::runtime_error("Cannot give away " + path.string());
        }
    };
    give(folder_);
    for (const auto& file : fs::recursive_directory_iterator(folder_)) give(file);
}

}  // namespace quorix::real
