#include "tests/real/Servers.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <vector>

#include "tests/real/Kinds.h"

namespace quorix::real {
namespace {

// Ends with the program's static objects, and each server with it.
RealServer& Shared(ServerKind kind) {
    static std::map<ServerKind, std::unique_ptr<RealServer>> servers;
    auto& server = servers[kind];
    if (!server) server = MakeServer(kind);
    return *server;
}

std::vector<std::string> Needs(ServerKind kind) {
    switch (kind) {
        case ServerKind::ejabberd: return {"/usr/bin/erl", "/usr/sbin/ejabberdctl"};
        case ServerKind::prosody: return {"/usr/bin/prosody"};
        case ServerKind::jabberd2: return {"/usr/sbin/jabberd2-c2s", "/usr/bin/sqlite3"};
    }
    return {};
}

}  // namespace

const char* Name(ServerKind kind) {
    switch (kind) {
        case ServerKind::ejabberd: return "ejabberd";
        case ServerKind::prosody: return "prosody";
        case ServerKind::jabberd2: return "jabberd2";
    }
    return "";
}

std::string WhyMissing(ServerKind kind) {
    for (const auto& file : Needs(kind)) {
        if (!std::filesystem::exists(file)) return std::string(Name(kind)) + " needs " + file;
    }
    return "";
}

std::unique_ptr<RealServer> MakeServer(ServerKind kind, const Certificate* certificate) {
    switch (kind) {
        case ServerKind::ejabberd: return MakeEjabberd(certificate);
        case ServerKind::prosody: return MakeProsody(certificate);
        case ServerKind::jabberd2: return MakeJabberd2();
    }
    return nullptr;
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
