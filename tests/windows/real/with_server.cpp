// with_server [--ejabberd | --prosody | --jabberd2] COMMAND [ARGUMENT...]: runs a command beside that server,
// or ejabberd, on loopback, both on this system.
//
// In the arguments @port@ is the server's port, @tls@ its port for TLS. The exit code is the command's.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "testkit/Certificates.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Servers.h"

extern char** environ;

namespace quorix::real {
namespace {

std::string Replaced(std::string text, const std::string& mark, int value) {
    for (std::size_t at; (at = text.find(mark)) != std::string::npos;) {
        text.replace(at, mark.size(), std::to_string(value));
    }
    return text;
}

pid_t Spawn(std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid_t pid = 0;
    const int error = posix_spawnp(&pid, arguments[0], nullptr, nullptr, arguments.data(), environ);
    if (error != 0) throw std::runtime_error("cannot run " + command[0]);
    return pid;
}

// Takes the option that names it.
ServerKind KindOf(std::vector<std::string>& command) {
    for (ServerKind kind : {ServerKind::ejabberd, ServerKind::prosody, ServerKind::jabberd2}) {
        if (command.front() != std::string("--") + Name(kind)) continue;
        command.erase(command.begin());
        return kind;
    }
    return ServerKind::ejabberd;
}

int Run(ServerKind kind, std::vector<std::string> command) {
    const testkit::TemporaryFolder folder;
    const testkit::Identity identity = testkit::SelfSigned({});
    const Certificate files{identity.SaveCertificate(folder.Path()), identity.SaveKey(folder.Path())};
    const std::unique_ptr<RealServer> server = MakeServer(kind, &files);
    server->Start();
    for (std::string& argument : command) {
        argument = Replaced(argument, "@port@", server->Port());
        argument = Replaced(argument, "@tls@", server->TlsPort());
    }
    const pid_t pid = Spawn(command);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace
}  // namespace quorix::real

int main(int count, char** values) {
    using namespace quorix::real;
    if (count < 2) return 2;
    try {
        std::vector<std::string> command(values + 1, values + count);
        const ServerKind kind = KindOf(command);
        const std::string missing = WhyMissing(kind);
        if (!missing.empty()) {
            std::printf("skipped: %s\n", missing.c_str());
            return std::getenv("CI") != nullptr ? 1 : 77;
        }
        return Run(kind, std::move(command));
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
