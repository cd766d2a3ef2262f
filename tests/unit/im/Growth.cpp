// Long lists cost each of their elements as much as short ones, and none is too long.
#include <algorithm>
#include <ctime>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

std::string Each(int count, const std::string& before, const std::string& after) {
    std::string all;
    for (int i = 0; i < count; ++i) all += before + std::to_string(i) + after;
    return all;
}

std::string Repeated(int count, const std::string& text) {
    std::string all;
    while (count-- > 0) all += text;
    return all;
}

std::string RosterOf(int count) {
    const std::string push = "<iq type='set'><query xmlns='jabber:iq:roster'><item jid='c";
    return "<iq type='result'><query xmlns='jabber:iq:roster'>" + Each(count, "<item jid='c", "@b'/>") +
           "</query></iq>" + Each(count, push, "@b' subscription='both'/></query></iq>") +
           Each(count, push, "@b' subscription='remove'/></query></iq>");
}

std::string ContactsOf(int count) {
    return Each(count, "<presence from='c", "@b/r'/>") +
           Each(count, "<presence from='c", "@b/r' type='unavailable'/>");
}

std::string ResourcesOf(int count) {
    return Each(count, "<presence from='a@b/", "'/>") + Each(count, "<presence from='a@b", "'/>") +
           Each(count, "<presence from='a@b/", "' type='unavailable'/>");
}

class Growth : public LoggedIn {
protected:
    double Seconds(const std::string& stanzas) {
        session->Presence().Clear();
        std::clock_t begin = std::clock();
        Say(stanzas);
        std::clock_t end = std::clock();
        *events = EventRecorder();
        return static_cast<double>(end - begin) / CLOCKS_PER_SEC;
    }
};

// Four times the load costs a bit more than four times as much, sixteen times if anything is walked for each
// stanza. The best of several runs, since other programs run beside.
TEST_F(Growth, TheCostOfATableIsProportionalToItsLength) {
    for (auto stanzas : {RosterOf, ContactsOf, ResourcesOf}) {
        double ratio = 16;
        for (int run = 0; run < 5 && ratio > 6; ++run)
            ratio = std::min(ratio, Seconds(stanzas(12000)) / Seconds(stanzas(3000)));
        EXPECT_LT(ratio, 8);
    }
}

// In both kinds of lists, and as attributes of one element.
double SecondsToList(cSession& session, int count) {
    auto message = session.CreateMessage(u"a@b", MSG_Chat, u"", u"");
    auto item = std::make_shared<cRosterItem>();
    cXML_Node node;
    node.xml(u"<a/>");
    std::clock_t begin = std::clock();
    for (int i = 0; i < count; ++i) {
        const String jid = u"a" + ToString(i);
        item->JID(jid);
        message->AddRoster(item);
        message->AddCC(jid);
        node.Root().SetAttribute(jid, jid);
    }
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

TEST_F(Growth, WhatIsListedInAMessageOrAnElementCostsTheSameHoweverMuchIsThere) {
    double ratio = 16;
    for (int run = 0; run < 5 && ratio > 6; ++run)
        ratio = std::min(ratio, SecondsToList(*session, 12000) / SecondsToList(*session, 3000));
    EXPECT_LT(ratio, 8);
}

TEST_F(LoggedIn, ContactsHaveGroupsByTheThousand) {
    const std::string item = "<item>" + Each(10000, "<group>", "</group>") + "</item>";
    for (int round = 0; round < 2; ++round)
        Say("<iq type='set'><query xmlns='jabber:iq:roster'>" + item + "</query></iq>");
    ASSERT_EQ(session->Roster().Count(), 1);
    EXPECT_EQ(session->Roster().Item(1)->Groups().Count(), 10000);
}

TEST_F(LoggedIn, APositionBeyond32767IsAnOverflowAndTheTableGoesOn) {
    Say("<iq type='result'><query xmlns='jabber:iq:roster'>" + Each(32769, "<item jid='c", "'/>") +
        "</query></iq>");
    EXPECT_EQ(session->FindRosterItem(u"c32766"), 32767);
    EXPECT_EQ(ErrorOf([&] { session->FindRosterItem(u"c32767"); }), ERR_Overflow);
    Say("<iq type='set'><query xmlns='jabber:iq:roster'><item jid='c32768' "
        "subscription='remove'/></query></iq>");
    EXPECT_EQ(session->Roster().Count(), 32768);
}

TEST_F(LoggedIn, HitsInThousandsOrInsideHitsAreAllThereAndDoNotMultiplyTheirText) {
    auto reply = [&](const std::string& content) {
        return Raised("<iq type='result'><query xmlns='jabber:iq:search'>" + content + "</query></iq>");
    };
    EXPECT_EQ(reply(Each(5000, "<item><a>", "</a></item>")), (Lines{"OnSearchResults 5000", "OnIQ"}));
    EXPECT_EQ(reply("<x><item><b>1</b></item></x>" + Repeated(400, "<item><a>") + std::string(1000, 'x') +
                    Repeated(400, "</a></item>") + "<y><item><b>2</b></item></y>"),
              (Lines{"OnSearchResults 3", "OnIQ"}));
    EXPECT_EQ(session->Searchresults()->Item(2)->Fields()->Item(1)->FieldData().size(), 1000U);
}

TEST_F(LoggedIn, ALongTextOfACardIsReadOnceHoweverOftenItsElementComesAgain) {
    auto cost = [this](std::size_t length, int more) {
        const std::string card =
            "<DESC>" + std::string(length, 'x') + "</DESC>" + Each(more, "<DESC>", "</DESC>");
        const std::clock_t before = std::clock();
        Say("<iq type='result'><vCard xmlns='vcard-temp'>" + card + "</vCard></iq>");
        EXPECT_EQ(events->vcard->Description().size(), length);
        return std::clock() - before;
    };
    constexpr std::size_t kLong = 2'000'000;
    constexpr int kMany = 60'000;
    const std::clock_t apart = cost(kLong, 0) + cost(1, kMany);
    EXPECT_LT(cost(kLong, kMany), 4 * apart) << "a copy for each element takes far longer";
}

}  // namespace
}  // namespace quorix
