#include "quorix/im/Presence.h"

#include <random>

#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class PresenceTest : public LoggedIn {
protected:
    PresenceTable& table = session->Presence();

    std::int32_t Find(StringView jid, StringView resource = {}, bool primary = true) {
        return table.FindPresence(jid, resource, primary);
    }
    void Add(StringView jid, StringView resource, std::int16_t priority = 0) {
        auto item = std::make_shared<cPresenceItem>();
        item->JID(jid);
        item->Resource(resource);
        item->Priority(priority);
        table.Add(item);
    }
};

TEST_F(PresenceTest, OwnPresenceHasStatusShowAndPriorityInThisOrder) {
    const std::tuple<StringView, std::int32_t, std::int16_t, std::string> cases[] = {
        {u"", KV_None, 0, "<priority>0</priority>"},
        {u"a<b&\u00e9", KV_Away, -3, "<status>a&lt;b&amp;é</status><show>away</show><priority>-3</priority>"},
        {u"", KV_chat, 1, "<show>chat</show><priority>1</priority>"},
        {u"", KV_ExtendedAway, 1, "<show>xa</show><priority>1</priority>"},
        {u"", KV_DND, 1, "<show>dnd</show><priority>1</priority>"},
        {u"", 7, 1, "<priority>1</priority>"}};
    for (const auto& [status, show, priority, content] : cases) {
        SendMyPresence(*LinkOf(session), status, show, priority);
        EXPECT_EQ(Heard(), "<presence>" + content + "</presence>");
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
    };
    for (const auto& [kind, attributes] : cases) {
        SendPresence(*LinkOf(session), u"", kind, u"");
        EXPECT_EQ(Heard(), "<presence" + attributes + "><status/></presence>");
    }
    env.Peer().Say("<message/>");
    session->SendPresence(u"a@b/c", KV_Invisible, u"x > y");
    EXPECT_EQ(Heard(), R"(<presence to="a@b/c" type="invisible"><status>x &gt; y</status></presence>)");
    EXPECT_EQ(events->lines, Lines{"OnMessage "}) << "the loop runs meanwhile";
}

TEST_F(PresenceTest, AnAddressAndResourceHaveOneEntryThatIsUpdatedInPlace) {
    EXPECT_EQ(Raised("<presence from='Änn@B.Org/Höme'><status>hi é</status><show>dnd</show>"
                     "<priority>7</priority></presence>"),
              Lines{"OnPresence Änn@b.org Höme 1 4 3"});
    auto item = events->presences.back();
    EXPECT_EQ(item->Status(), u"hi \u00e9");
    EXPECT_EQ(item->Priority(), 7);
    EXPECT_EQ(Raised("<presence from='Änn@b.org/Höme' type=' available '/><presence from='Änn@b.org/höme'/>"),
              (Lines{"OnPresence Änn@b.org Höme 1 0 3", "OnPresence Änn@b.org höme 1 0 3"}));
    EXPECT_EQ(table.Count(), 2);
    EXPECT_EQ(table.Item(1), item);
    EXPECT_EQ(item->Status(), u"");
    EXPECT_EQ(item->Priority(), 0);
}

TEST_F(PresenceTest, SubscriptionsAndErrorsNeverTouchTheTable) {
    Raised("<presence from='a@b'><status>here</status></presence>");
    for (const std::string type : {"subscribe", "unsubscribe", "subscribed", "unsubscribed", "error",
                                   "invisible", "probe", "Available"}) {
        Say("<presence from='A@b' type='" + type + "'><status>&amp;lt;x</status></presence>");
    }
    EXPECT_EQ(events->Take(), (Lines{"OnSubscriptionRequest a@b 2 <x", "OnSubscriptionRequest a@b 3 <x",
                                     "OnSubscriptionAccept a@b <x", "OnSubscriptionDenied a@b <x"}));
    ASSERT_EQ(table.Count(), 1);
    EXPECT_EQ(table.Item(1)->Status(), u"here");
}

TEST_F(PresenceTest, LeavingRemovesTheEntryAndIsReportedForStrangersToo) {
    Raised("<presence from='é@b/ü'/><presence from='é@b/s'/>");
    EXPECT_EQ(Raised("<presence from='é@b/ü' type='unavailable'><status>bye</status></presence>"
                     "<presence from='x@y/z' type='unavailable'/>"),
              (Lines{"OnPresence é@b ü 0 0 3", "OnPresence x@y z 0 0 3"}));
    EXPECT_EQ(table.Count(), 1);
    EXPECT_EQ(Find(u"\u00e9@b", u"s"), 1);
    EXPECT_EQ(events->presences[2]->Status(), u"bye");
}

// A sender without a resource takes over the contact's primary entry, and leaves with the entry that is
// primary then.
TEST_F(PresenceTest, ABareAddressTakesThePrimaryEntry) {
    Say("<presence from='a@b/low'><priority>1</priority></presence>"
        "<presence from='a@b/high'><priority>5</priority></presence>"
        "<presence from='a@b'><priority>3</priority></presence>");
    EXPECT_EQ(table.Count(), 2);
    EXPECT_EQ(table.Item(2)->Resource(), u"");
    EXPECT_EQ(Find(u"a@b", u"high"), 0);

    Say("<presence from='a@b' type='unavailable'/>");
    ASSERT_EQ(table.Count(), 1);
    EXPECT_EQ(table.Item(1)->Resource(), u"");
    EXPECT_EQ(events->presences.back(), table.Item(1));
}

TEST_F(PresenceTest, ARoomsPresencesAreReportedAndNotKeptUntilOurOwnLeavingForgetsIt) {
    Raised("<presence from='café@c/ann'/>");
    Join(u"caf\u00e9@c", u"\u00c9va");
    EXPECT_EQ(Raised("<presence from='Café@c/bob'/><presence from='café@c/ann' type='unavailable'/>"),
              (Lines{"OnPresence café@c bob 1 0 2", "OnPresence café@c ann 0 0 2"}));
    EXPECT_EQ(table.Count(), 1) << "what came before the room was known stays";
    EXPECT_EQ(session->FindGroupChat(u"caf\u00e9@c"), 1);
    EXPECT_EQ(Raised("<presence from='café@c/Éva' type='unavailable'/>"), Lines{});
    EXPECT_EQ(session->FindGroupChat(u"caf\u00e9@c"), 0);
}

TEST_F(PresenceTest, AbsurdPresencesLoseNothingBehindThemAndAnUnknownShowTextChangesNothing) {
    EXPECT_EQ(Raised("<presence/><presence from='/'/>"
                     "<presence from='a@b/c/d'><priority>-200</priority></presence>"
                     "<presence from='a@b/x'><priority>70000</priority></presence>"
                     "<presence from='a@b/y'><priority>high</priority><show/><status/></presence>"
                     "<presence from='a@b/x'><show>xa</show></presence>"
                     "<presence from='a@b/x'><show>Away</show></presence>"),
              (Lines{"OnPresence   1 0 3", "OnPresence   1 0 3", "OnPresence a@b c/d 1 0 3",
                     "OnPresence a@b x 1 0 3", "OnPresence a@b y 1 0 3", "OnPresence a@b x 1 3 3",
                     "OnPresence a@b x 1 3 3"}));
    EXPECT_EQ(table.Count(), 4);
    EXPECT_EQ(table.Item(2)->Priority(), -200);
    EXPECT_EQ(table.Item(3)->Priority(), 0);
}

TEST_F(PresenceTest, TheSessionsOwnLookUpsLeaveTheCursorAndEveryPresenceMovesIt) {
    Add(u"a@b", u"one");
    Add(u"x@y", u"one");
    Add(u"a@b", u"two");
    EXPECT_EQ(Find(u"x@y", u"one"), 2);
    table.Primary(u"a@b");
    EXPECT_EQ(Find(u"a@b", u"", false), 3);
    Say("<presence from='a@b/one' type='error'/>");
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
        PresenceTable brief;
        brief.Add(item);
        brief.Add(nullptr);
        EXPECT_EQ(brief.FindPresence(u"", u"", true), 1);
    }
    item->JID(u"a@b");
    EXPECT_EQ(item->JID(), u"a@b");
}

}  // namespace
}  // namespace quorix
