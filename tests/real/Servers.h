// The kinds of server that tests run on, and the fixture that gives a test one of them.
//
//     class Chat : public RealServerTest {};
//     TEST_P(Chat, ReachesTheContact) { session.Port(Server().Port()); ... }
//     QUORIX_ON_EVERY_SERVER(Chat);
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

#include "tests/real/RealServer.h"

namespace quorix::real {

enum class ServerKind { ejabberd, prosody, jabberd2 };

const char* Name(ServerKind kind);
inline void PrintTo(ServerKind kind, std::ostream* out) { *out << Name(kind); }

// Why this machine cannot run the server; empty when it can.
std::string WhyMissing(ServerKind kind);

// Not started yet. With a certificate, ejabberd and Prosody listen for TLS as well; jabberd2 is given none.
std::unique_ptr<RealServer> MakeServer(ServerKind kind, const Certificate* certificate = nullptr);

// Where a server is not installed its tests are skipped; they fail where CI is set, since there everything
// is.
void SkipOrFail(const std::string& reason);

// A test that runs once on each kind of server. A server is started once for all the tests of the process.
class RealServerTest : public ::testing::TestWithParam<ServerKind> {
protected:
    void SetUp() override;

    // Running at the start of every test, whatever the test before has done to it.
    RealServer& Server() const { return *server_; }

private:
    RealServer* server_ = nullptr;
};

#define QUORIX_ON_EVERY_SERVER(suite)                                                                \
    INSTANTIATE_TEST_SUITE_P(                                                                        \
        Real, suite,                                                                                 \
        ::testing::Values(::quorix::real::ServerKind::ejabberd, ::quorix::real::ServerKind::prosody, \
                          ::quorix::real::ServerKind::jabberd2),                                     \
        [](const auto& made) { return ::quorix::real::Name(made.param); })

}  // namespace quorix::real
