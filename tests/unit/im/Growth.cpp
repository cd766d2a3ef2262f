// Long rosters and floods of presence cost each contact as much as short ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "tests/unit/im/FakeSession.h"

namespace quorix::test {
namespace {

String Each(int count, StringView before, StringView after) {
    String all;
    for (int i = 0; i < count; ++i) all += Concat({before, ToString(i), after});
    return all;
}

void ArriveEach(FakeSession& session, int count, StringView before, StringView after) {
    for (int i = 0; i < count; ++i) session.Arrive(Concat({before, ToString(i), after}));
}

void TakeRoster(FakeSession& session, int count) {
    session.Arrive(
        Concat({u"<iq type='result'><query>", Each(count, u"<item jid='c", u"@b'/>"), u"</query></iq>"}));
    for (StringView subscription : {u"both", u"remove"}) {
        ArriveEach(session, count, u"<iq type='set'><query><item jid='c",
                   Concat({u"@b' subscription='", subscription, u"'/></query></iq>"}));
    }
}

void TakeContacts(FakeSession& session, int count) {
    ArriveEach(session, count, u"<presence from='c", u"@b/r'/>");
    ArriveEach(session, count, u"<presence from='c", u"@b/r' type='unavailable'/>");
}

void TakeResources(FakeSession& session, int count) {
    ArriveEach(session, count, u"<presence from='a@b/", u"'/>");
    ArriveEach(session, count, u"<presence from='a@b", u"'/>");
    ArriveEach(session, count, u"<presence from='a@b/", u"' type='unavailable'/>");
}

double Seconds(void (*take)(FakeSession&, int), int count) {
    auto session = FakeSession::Make();
    std::clock_t begin = std::clock();
    take(*session, count);
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

// Four times the load costs a bit more than four times as much, sixteen times if anything is walked for each
// stanza. The best of several runs, since other programs run beside.
TEST(Growth, TheCostOfATableIsProportionalToItsLength) {
    for (auto take : {TakeRoster, TakeContacts, TakeResources}) {
        double ratio = 16;
        for (int run = 0; run < 5 && ratio > 6; ++run)
            ratio = std::min(ratio, Seconds(take, 12000) / Seconds(take, 3000));
        EXPECT_LT(ratio, 8);
    }
}

}  // namespace
}  // namespace quorix::test
