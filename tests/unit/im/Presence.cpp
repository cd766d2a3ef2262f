#include "quorix/im/Presence.h"

#include <gtest/gtest.h>

#include <random>

#include "testkit/DeterministicEnvironment.h"
#include "tests/unit/im/FakeSession.h"

namespace quorix::test {
namespace {

class PresenceTest : public ::testing::Test {
protected:
    testkit::DeterministicEnvironment environment;
    std::shared_ptr<FakeSession> session = FakeSession::Make();

    void Arrive(StringView xml) { session->Arrive(xml); }
    std::int32_t Find(StringView jid, StringView resource = {}, bool primary = true) {
        return session->presences.FindPresence(jid, resource, primary);
    }
    std::shared_ptr<cPresenceItem> Add(StringView jid, StringView resource, std::int16_t priority = 0) {
        auto item = std::make_shared<cPresenceItem>();
        item->JID(jid);
        item->Resource(resource);
        item->Priority(priority);
        session->presences.Add(item);
        return item;
    }
};

TEST_F(PresenceTest, OwnPresenceHasStatusShowAndPriorityInThisOrder) {
    const std::tuple<StringView, std::int32_t, std::int16_t, std::string> cases[] = {
        {u"", KV_None, 0, "<priority>0</priority>"},
        {u"a<b&\u00e9", KV_Away, -3,
         "<status>a&lt;b&amp;\xC3\x83\xC2\xA9</status><show>away</show><priority>-3</priority>"},
        {u"", KV_chat, 1, "<show>chat</show><priority>1</priority>"},
        {u"", KV_ExtendedAway, 1, "<show>xa</show><priority>1</priority>"},
        {u"", KV_DND, 1, "<show>dnd</show><priority>1</priority>"},
        {u"", 7, 1, "<priority>1</priority>"},
        {u"", -1, 1, "<priority>1</priority>"}};
    for (const auto& [status, show, priority, content] : cases) {
        SendMyPresence(*session, status, show, priority);
        EXPECT_EQ(session->TakeSent(), Lines{"<presence>" + content + "</presence>"});
    }
}

TEST_F(PresenceTest, DirectedPresenceNamesItsTargetAsItsKindDemands) {
    const std::pair<std::int32_t, std::string> cases[] = {
        {KV_Available, R"( type="available")"},
        {KV_UnAvailable, R"( type="unavailable")"},
        {KV_Subscribe, R"( type="subscribe")"},
        {KV_UnSubscribe, R"( to="" type="unsubscribe")"},
        {KV_Subscribe_Accept, R"( to="" type="subscribed")"},
        {KV_Subscribe_Deny, R"( to="" type="unsubscribed")"},
        {KV_Invisible, R"( type="invisible")"},
        {7, ""},
        {-1, ""},
    };
    for (const auto& [kind, attributes] : cases) {
        SendPresence(*session, u"", kind, u"");
        EXPECT_EQ(session->TakeSent(), Lines{"<presence" + attributes + "><status/></presence>"});
    }
    SendPresence(*session, u"a@b/c", KV_Invisible, u"x > y");
    SendPresence(*session, u"a@b", 9, u"");
    EXPECT_EQ(session->TakeSent(),
              (Lines{R"(<presence to="a@b/c" type="invisible"><status>x &gt; y</status></presence>)",
                     "<presence><status/></presence>"}));
}

TEST_F(PresenceTest, DirectedPresenceLetsTheLoopRun) {
    struct Sink : SocketSink {
        int events = 0;
        void OnSocketEvent(SocketId, std::int32_t, std::int32_t) override { ++events; }
        void OnSocketTimer(SocketId) override {}
    } sink;
    SocketId client = environment.CreateSocket().id;
    environment.AsyncSelect(client, {}, sink, SOCK_Connect);
    environment.Connect(client, {0x7f000001, 5222});
    ASSERT_EQ(sink.events, 0);
    SendPresence(*session, u"a@b", KV_Available, u"");
    EXPECT_EQ(sink.events, 1);
}

TEST_F(PresenceTest, AnAddressAndResourceHaveOneEntryThatIsUpdatedInPlace) {
    Arrive(
        u"<presence from='Ann@B.Org/Home'><status>hi "
        u"\u00c3\u00a9</status><show>dnd</show><priority>7</priority></presence>");
    EXPECT_EQ(session->TakeEvents(), Lines{"OnPresence ann@b.org Home 1 4 3"});
    auto item = session->log.presences.back();
    EXPECT_EQ(item->Status(), u"hi \u00e9");
    EXPECT_EQ(item->Priority(), 7);

    session->kinds[u"ann@b.org"] = KV_RosterItem;
    Arrive(u"<presence from='ann@b.org/Home' type=' available '/>");
    Arrive(u"<presence from='ann@b.org/home'/>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnPresence ann@b.org Home 1 0 0", "OnPresence ann@b.org home 1 0 0"}));
    EXPECT_EQ(session->presences.Count(), 2);
    EXPECT_EQ(session->presences.Item(1), item);
    EXPECT_EQ(item->Status(), u"");
    EXPECT_EQ(item->Priority(), 0);
}

TEST_F(PresenceTest, ANonAsciiSenderUpdatesItsOwnEntry) {
    for (int i = 0; i < 2; ++i) Arrive(u"<presence from='\u00c3\u00a9@b/\u00c3\u00bc'/>");
    EXPECT_EQ(session->presences.Count(), 1);
    EXPECT_EQ(Find(u"\u00e9@b", u"\u00fc"), 1);
    Arrive(u"<presence from='\u00c3\u00a9@b/\u00c3\u00bc' type='unavailable'/>");
    EXPECT_EQ(session->presences.Count(), 0);
}

TEST_F(PresenceTest, AnUnknownShowTextChangesNothing) {
    Arrive(u"<presence from='a@b/r'><show>xa</show></presence>");
    Arrive(u"<presence from='a@b/r'><show>Away</show></presence>");
    Arrive(u"<presence from='a@b/new'><show>Away</show></presence>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnPresence a@b r 1 3 3", "OnPresence a@b r 1 3 3", "OnPresence a@b new 1 0 3"}));
}

TEST_F(PresenceTest, SubscriptionsAndErrorsNeverTouchTheTable) {
    Arrive(u"<presence from='a@b'><status>here</status></presence>");
    session->TakeEvents();
    for (StringView type : {u"subscribe", u"unsubscribe", u"subscribed", u"unsubscribed", u"error",
                            u"invisible", u"probe", u"Available"}) {
        Arrive(Concat({u"<presence from='A@b' type='", type, u"'><status>&amp;lt;x</status></presence>"}));
    }
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnSubscriptionRequest a@b 2 <x", "OnSubscriptionRequest a@b 3 <x",
                     "OnSubscriptionAccept a@b <x", "OnSubscriptionDenied a@b <x"}));
    ASSERT_EQ(session->presences.Count(), 1);
    EXPECT_EQ(session->presences.Item(1)->Status(), u"here");
}

TEST_F(PresenceTest, LeavingRemovesTheEntryAndIsReportedForStrangersToo) {
    Arrive(u"<presence from='a@b/r'/>");
    Arrive(u"<presence from='a@b/s'/>");
    session->TakeEvents();
    Arrive(u"<presence from='a@b/r' type='unavailable'><status>bye</status></presence>");
    Arrive(u"<presence from='x@y/z' type='unavailable'/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnPresence a@b r 0 0 3", "OnPresence x@y z 0 0 3"}));
    EXPECT_EQ(session->presences.Count(), 1);
    EXPECT_EQ(Find(u"a@b", u"s"), 1);
    EXPECT_EQ(session->log.presences[2]->Status(), u"bye");
}

// A sender without a resource takes over the contact's primary entry, and leaves with the entry that is
// primary then.
TEST_F(PresenceTest, ABareAddressTakesThePrimaryEntry) {
    Arrive(u"<presence from='a@b/low'><priority>1</priority></presence>");
    Arrive(u"<presence from='a@b/high'><priority>5</priority></presence>");
    Arrive(u"<presence from='a@b'><priority>3</priority></presence>");
    EXPECT_EQ(session->presences.Count(), 2);
    EXPECT_EQ(session->presences.Item(2)->Resource(), u"");
    EXPECT_EQ(Find(u"a@b", u"high"), 0);

    Arrive(u"<presence from='a@b' type='unavailable'/>");
    ASSERT_EQ(session->presences.Count(), 1);
    EXPECT_EQ(session->presences.Item(1)->Resource(), u"");
    EXPECT_EQ(session->log.presences.back(), session->presences.Item(1));
}

TEST_F(PresenceTest, RoomsAreReportedButNotKept) {
    Arrive(u"<presence from='room@b/ann'/>");
    session->TakeEvents();
    session->kinds[u"room@b"] = KV_GroupChatItem;
    session->leftRoom = u"room@b/me";
    Arrive(u"<presence from='Room@b/bob'/>");
    Arrive(u"<presence from='room@b/ann' type='unavailable'/>");
    Arrive(u"<presence from='room@b/me' type='unavailable'/>");
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnPresence room@b bob 1 0 2", "OnPresence room@b ann 0 0 2"}));
    EXPECT_EQ(session->presences.Count(), 1) << "what came before the room was known stays";
}

TEST_F(PresenceTest, AbsurdPresencesLoseNothingBehindThem) {
    Arrive(u"<presence/>");
    Arrive(u"<presence from='/'/>");
    Arrive(u"<presence from='a@b/c/d'><priority>-200</priority></presence>");
    Arrive(u"<presence from='a@b/x'><priority>70000</priority></presence>");
    Arrive(u"<presence from='a@b/y'><priority>high</priority><show/><status/></presence>");
    EXPECT_EQ(session->TakeEvents(),
              (Lines{"OnPresence   1 0 3", "OnPresence   1 0 3", "OnPresence a@b c/d 1 0 3",
                     "OnPresence a@b x 1 0 3", "OnPresence a@b y 1 0 3"}));
    EXPECT_EQ(session->presences.Count(), 4);
    EXPECT_EQ(session->presences.Item(2)->Priority(), -200);
    EXPECT_EQ(session->presences.Item(3)->Priority(), 0);
}

TEST_F(PresenceTest, AListOfPresencesIsReportedAndNotKept) {
    ParsePresenceList(*session,
                      Stanza(Node(u"<iq type='result'><query xmlns='jabber:iq:admin'>"
                                  u"<presence from='Ann@B/X'><status>\u00c3\u00a9</status></presence>"
                                  u"<group><presence from='c@d'/></group></query></iq>")));
    EXPECT_EQ(session->TakeEvents(), (Lines{"OnWhoisOnlineStart", "OnWhoisOnlineUser Ann@B/X \xC3\xA9",
                                            "OnWhoisOnlineUser c@d ", "OnWhoisOnlineEnd"}));
    EXPECT_EQ(session->presences.Count(), 0);
}

TEST_F(PresenceTest, TheCursorIsSharedAndFollowsEveryLookUp) {
    Add(u"a@b", u"one");
    Add(u"x@y", u"one");
    Add(u"a@b", u"two");
    EXPECT_EQ(Find(u"x@y", u"one"), 2);
    EXPECT_EQ(Find(u"a@b", u"", false), 3);
    EXPECT_EQ(Find(u"none", u"", true), 0);
    EXPECT_EQ(Find(u"a@b", u"", false), 1);
    EXPECT_EQ(Find(u"a@b", u"gone"), 0);
    EXPECT_EQ(Find(u"a@b", u"", false), 0) << "the cursor stood behind the last entry";
    EXPECT_EQ(Find(u"a@b", u"", false), 1);

    session->presences.Primary(u"a@b");
    EXPECT_EQ(Find(u"a@b", u"", false), 3) << "the session's own look-up leaves the cursor alone";
    Arrive(u"<presence from='a@b/one' type='error'/>");
    EXPECT_EQ(Find(u"a@b", u"", false), 1) << "every presence moves it";

    EXPECT_EQ(Find(u"a@b", u"two"), 3);
    session->presences.Clear();
    EXPECT_EQ(Find(u"a@b"), 0) << "nor does the cursor move in an empty table";
    Add(u"a@b", u"one");
    EXPECT_EQ(Find(u"a@b", u"", false), 0) << "it stands beyond what was removed";
    EXPECT_EQ(Find(u"a@b", u"", false), 1);
}

// Finds by walking over the live records, one by one.
class Walker {
public:
    explicit Walker(const PresenceTable& table) : table_(table) {}

    std::int32_t Find(StringView jid, StringView resource, bool primary) {
        if (table_.Count() == 0) return 0;
        if (!resource.empty()) return FindResource(jid, resource);
        return primary ? FindPrimary(jid) : FindNext(jid);
    }

private:
    std::int32_t FindResource(StringView jid, StringView resource) {
        for (cursor_ = 1; cursor_ <= table_.Count(); ++cursor_) {
            const auto& item = table_.Item(cursor_);
            if (item->JID() == jid && item->Resource() == resource) return cursor_;
        }
        return 0;
    }
    std::int32_t FindNext(StringView jid) {
        if (cursor_ == 0) cursor_ = 1;
        while (cursor_ <= table_.Count()) {
            if (table_.Item(cursor_++)->JID() == jid) return cursor_ - 1;
        }
        cursor_ = 1;
        return 0;
    }
    std::int32_t FindPrimary(StringView jid) {
        std::int32_t result = 0;
        std::int16_t best = 0;
        for (cursor_ = 1; cursor_ <= table_.Count(); ++cursor_) {
            const auto& item = table_.Item(cursor_);
            if (item->JID() != jid || item->Priority() < best) continue;
            best = item->Priority();
            result = cursor_;
        }
        cursor_ = 1;
        return result;
    }

    const PresenceTable& table_;
    std::int32_t cursor_ = 0;
};

TEST_F(PresenceTest, FindingEqualsAWalkWhateverTheApplicationChanges) {
    std::minstd_rand random(12345);
    auto pick = [&](std::size_t n) { return random() % n; };
    auto priority = [&] { return static_cast<std::int16_t>(static_cast<int>(pick(7)) - 2); };
    const String jids[] = {u"a@b", u"A@b", u"c@d", u""};
    const String resources[] = {u"r", u"s", u""};
    PresenceTable& table = session->presences;
    PresenceTable other;
    Walker walker(table);
    auto anyIndex = [&] {
        return static_cast<std::int32_t>(pick(static_cast<std::size_t>(table.Count()))) + 1;
    };
    auto any = [&] { return table.Item(anyIndex()); };
    for (int step = 0; step < 5000; ++step) {
        switch (table.Count() == 0 ? 0 : pick(10)) {
            case 0:
            case 1: Add(jids[pick(4)], resources[pick(3)], priority()); break;
            case 2: any()->JID(jids[pick(4)]); break;
            case 3: any()->Resource(resources[pick(3)]); break;
            case 4: any()->Priority(priority()); break;
            case 5:
            case 6: table.Remove(anyIndex()); break;
            case 7: table.Add(any()); break;
            case 8: table.Replace(anyIndex(), any()); break;
            default: pick(4) ? other.Add(any()) : other.Clear();
        }
        for (const String& jid : jids) {
            const String& resource = resources[pick(3)];
            bool primary = pick(3) == 0;
            ASSERT_EQ(Find(jid, resource, primary), walker.Find(jid, resource, primary)) << "step " << step;
        }
    }
}

TEST_F(PresenceTest, ARecordOutlivesItsTable) {
    auto item = std::make_shared<cPresenceItem>();
    {
        PresenceTable table;
        table.Add(item);
        table.Add(nullptr);
        EXPECT_EQ(table.Count(), 2);
        EXPECT_EQ(table.FindPresence(u"", u"", true), 1);
    }
    item->JID(u"a@b");
    EXPECT_EQ(item->JID(), u"a@b");
}

}  // namespace
}  // namespace quorix::test
