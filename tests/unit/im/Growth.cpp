// Long rosters and floods of presence cost each contact as much as short ones.
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

}  // namespace
}  // namespace quorix
