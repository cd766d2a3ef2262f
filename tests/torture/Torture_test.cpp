// Whatever fails below a session, and whatever an application does inside its events, the session's next day
// is like any other, and nothing stays behind it.
#include <gtest/gtest.h>

#include <set>

#include "testkit/Day.h"

namespace quorix {
namespace {

using testkit::Call;
using testkit::Day;
using testkit::Lines;

// A day leaves entries in the tables, so what comes after a disturbance is looked at from its second day on.
Lines LaterDay(Day& day) {
    day.Run();
    day.events->Take();
    day.Run();
    return day.events->Take();
}

Lines UsualDay(eMode mode) {
    Day day(mode);
    return LaterDay(day);
}

class Torture : public ::testing::TestWithParam<eMode> {
protected:
    // Days in which the n-th `call` fails, for each n that comes. Returns how many did.
    int Sweep(Call call, std::int32_t error);
    int SweepAll(std::int32_t error);

    const Lines usual_ = UsualDay(GetParam());
};

int Torture::Sweep(Call call, std::int32_t error) {
    for (int nth = 1;; ++nth) {
        Day day(GetParam());
        day.environment.Fail(call, nth, error);
        day.Run();
        if (!day.environment.HasFailed(call)) return nth - 1;
        EXPECT_EQ(LaterDay(day), usual_) << "after call " << nth << " of kind " << static_cast<int>(call);
        EXPECT_TRUE(day.LeavesNothing()) << "after call " << nth << " of kind " << static_cast<int>(call);
    }
}

int Torture::SweepAll(std::int32_t error) {
    int calls = 0;
    for (Call call :
         {Call::Create, Call::Bind, Call::Connect, Call::Send, Call::Receive, Call::Select, Call::SetTimer})
        calls += Sweep(call, error);
    return calls;
}

TEST_P(Torture, OneFailingCallIsOneBadDay) { EXPECT_GT(SweepAll(10054), 100); }

// By pieces of one byte, in both directions, as when everything comes at once.
TEST_P(Torture, SingleBytesMakeTheSameDay) {
    Day day(GetParam());
    day.environment.LimitReads(1);
    day.environment.LimitWrites(1);
    EXPECT_EQ(LaterDay(day), usual_);
    EXPECT_TRUE(day.LeavesNothing());
}

struct Action {
    const char* name;
    void (*act)(Day& day);
};

const Action kActions[] = {
    {"send", [](Day& day) { day.session->SendXML(u"<iq/>"); }},
    {"Disconnect", [](Day& day) { day.session->Disconnect(); }},
    {"Connect", [](Day& day) { day.session->Connect(); }},
    {"Unadvise", [](Day& day) { day.session->Unadvise(day.events); }},
    {"throw", [](Day&) { throw std::runtime_error("a handler's"); }},
    {"release", [](Day& day) { day.session.reset(); }},
    {"run the loop", [](Day& day) { day.environment.DoEvents(); }},
};

// What raises an event again inside it comes to an end.
constexpr int kMostActions = 3;

void DayWith(eMode mode, const std::string& event, const Action& action, const Lines& usual) {
    SCOPED_TRACE(event + ": " + action.name);
    Day day(mode);
    int acted = 0;
    day.events->hook = [&](const std::string& raised) {
        if (raised == event && day.session && acted++ < kMostActions) action.act(day);
    };
    day.Run();
    day.events->hook = nullptr;
    EXPECT_GT(acted, 0);
    if (day.session) {
        day.session->Unadvise(day.events);
        day.session->Advise(day.events);
        EXPECT_EQ(LaterDay(day), usual);
    }
    EXPECT_TRUE(day.LeavesNothing());
}

std::set<std::string> EventsOf(eMode mode) {
    Day day(mode);
    std::set<std::string> events;
    day.events->hook = [&](const std::string& event) { events.insert(event); };
    day.Run();
    return events;
}

TEST_P(Torture, AnythingMayBeDoneInsideAnyOfThe45Events) {
    const std::set<std::string> events = EventsOf(GetParam());
    EXPECT_EQ(events.size(), 45U) << ::testing::PrintToString(events);
    for (const std::string& event : events) {
        for (const Action& action : kActions) DayWith(GetParam(), event, action, usual_);
    }
}

// The long form: with each error that a system has for some call.
TEST_P(Torture, DISABLED_OneFailingCallIsOneBadDayWhateverItsError) {
    int days = 0;
    for (std::int32_t error :
         {10004, 10009, 10013, 10014, 10022, 10024, 10035, 10036, 10037, 10038, 10048, 10049,
          10050, 10051, 10052, 10053, 10055, 10056, 10057, 10058, 10060, 10061, 10064, 10065}) {
        SCOPED_TRACE(error);
        days += SweepAll(error);
    }
    EXPECT_GT(days, 2400);
    std::cout << days << " days in which one call failed\n";
}

INSTANTIATE_TEST_SUITE_P(Modes, Torture, ::testing::Values(KV_Classic, KV_Modern));

}  // namespace
}  // namespace quorix
