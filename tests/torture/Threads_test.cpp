// Threads that each have sessions, documents and look-ups of their own, under the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "testkit/Day.h"
#include "testkit/LoopbackServer.h"

namespace quorix {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 5;

// Whether `work` came true in all of them.
bool InThreads(bool (*work)()) {
    std::atomic<int> succeeded = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            int good = 0;
            for (int round = 0; round < kRounds; ++round) good += work() ? 1 : 0;
            succeeded += good;
        });
    }
    for (std::thread& thread : threads) thread.join();
    return succeeded == kThreads * kRounds;
}

bool DayRaisesAll(eMode mode) {
    testkit::Day day(mode);
    day.Run();
    return day.events->Count("OnAuthorized") == 1 && day.events->Count("OnDisConnected") == 2 &&
           day.LeavesNothing();
}

TEST(Threads, HaveSessionsOfTheirOwn) {
    EXPECT_TRUE(InThreads([] { return DayRaisesAll(KV_Classic) && DayRaisesAll(KV_Modern); }));
}

TEST(Threads, HaveDocumentsOfTheirOwn) {
    EXPECT_TRUE(InThreads([] {
        cXML_Node node;
        node.xml(u"<a><p:b>1</p:b><p:b>2</p:b></a>");
        node.AddTag(u"c", u"a", u"3");
        return node.getNodes(u"//p:b")->Count() == 2 && !node.getNode(u"//d") && node.GetTagInt(u"c") == 3;
    }));
}

// Over the system's sockets, with look-ups on the system's threads.
bool LogsInOverLoopback() {
    auto server = testkit::LoopbackServer::Create();
    server->AddAccount(u"u", {u"p"});
    auto session = cSession::Create();
    session->Mode(KV_Modern);
    session->ServerAddress(u"localhost");
    session->Port(static_cast<std::int16_t>(server->Start()));
    session->username(u"u");
    session->Password(u"p");
    session->Resource(u"r");
    session->Connect();
    Environment& environment = Environment::Current();
    std::int64_t end = environment.Milliseconds() + 30000;
    while (!session->Active() && environment.Milliseconds() < end) environment.DoEvents();
    bool active = session->Active();
    session->Disconnect();
    return active;
}

TEST(Threads, HaveLoopsOfTheirOwn) { EXPECT_TRUE(InThreads(LogsInOverLoopback)); }

}  // namespace
}  // namespace quorix
