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
