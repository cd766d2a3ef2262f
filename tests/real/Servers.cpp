#include "tests/real/Servers.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <vector>

namespace quorix::real {
namespace {

// Ends with the program's static objects, and each server with it.
RealServer& Shared(ServerKind kind) {
    static std::map<ServerKind, std::unique_ptr<RealServer>> servers;
    auto& server = servers[kind];
    if (!server) server = MakeServer(kind);
    return *server;
}

struct Kind {
    const char* name;
    std::vector<std::string> needs;
    std::unique_ptr<RealServer> (*make)(const Certificate*);
};

const Kind& Of(ServerKind kind) {
    static const Kind kinds[] = {{"ejabberd", {"/usr/bin/erl", "/usr/sbin/ejabberdctl"}, MakeEjabberd},
                                 {"prosody", {"/usr/bin/prosody"}, MakeProsody},
                                 {"jabberd2", {"/usr/sbin/jabberd2-c2s", "/usr/bin/sqlite3"}, MakeJabberd2}};
    return kinds[static_cast<int>(kind)];
}

}  // namespace

const char* Name(ServerKind kind) { return Of(kind).name; }

std::string WhyMissing(ServerKind kind) {
    for (const auto& file : Of(kind).needs) {
        if (!std::filesystem::exists(file)) return std::string(Name(kind)) + " needs " + file;
    }
    return "";
}

std::unique_ptr<RealServer> MakeServer(ServerKind kind, const Certificate* certificate) {
    return Of(kind).make(certificate);
}

void SkipOrFail(const std::string& reason) {
    if (std::getenv("CI") != nullptr) FAIL() << reason;
    GTEST_SKIP() << reason;
}

void RealServerTest::SetUp() {
    const std::string missing = WhyMissing(GetParam());
    if (!missing.empty()) {
        SkipOrFail(missing);
        return;
    }
    server_ = &Shared(GetParam());
    server_->Start();
    server_->AwaitLogouts();
}

}  // namespace quorix::real
