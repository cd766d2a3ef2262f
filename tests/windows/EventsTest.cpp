// What events leave behind, and sinks that leave inside one.
#include <gtest/gtest.h>

#include "quorix/automation/Object.h"
#include "quorix/link/SessionLink.h"
#include "quorix/session/cSession.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

using namespace quorix;
using E = SessionEvents;

class Events : public ::testing::Test {
protected:
    const std::shared_ptr<cSession> session = cSession::Create();
    const Late object{automation::ToVariant(session)};
};

TEST_F(Events, LeaveNoReferencesBehind) {
    const unsigned long before = object.References();
    Connection sink(object);
    const unsigned long connected = object.References();
    sink->at[1] = [&](DISPPARAMS&) {
        EXPECT_EQ(object.Text(L"Active"), "False") << "called from inside the event";
        LinkOf(session)->Raise(&E::OnNewUserCreated);
        return E_FAIL;
    };
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_EQ(sink->events, (std::vector<DISPID>{1, 2}));
    EXPECT_EQ(object.References(), connected);
    sink.Cut();
    EXPECT_EQ(object.References(), before);
}

TEST_F(Events, StopWhenTheSinkLeaves) {
    Connection first(object);
    Connection second(object);
    first->at[1] = [&](DISPPARAMS&) { return second.Cut(); };
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_TRUE(second->events.empty()) << "cut off by the sink before it";
    first.Cut();
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_EQ(first->events.size(), 1U);
}

}  // namespace
}  // namespace windowstest
