// The console client in chat with somebody, on each kind of server.
#include <gmock/gmock.h>

#ifdef QUORIX_CONSOLE

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/real/Person.h"

namespace quorix::real {
namespace {

using ::testing::HasSubstr;

// The program, fed through a pipe; what it prints goes to a file.
class Console {
public:
    Console(const RealServer& server, const std::string& user) {
        const std::string command = std::string(QUORIX_CONSOLE) + " --server localhost --new --port " +
                                    std::to_string(server.Port()) + " --user " + user +
                                    " --password secret >" + output_ + " 2>&1";
        input_ = popen(command.c_str(), "w");
    }
    ~Console() {
        Close();
        std::filesystem::remove(output_);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    void Type(const std::string& line) const {
        std::fputs((line + "\n").c_str(), input_);
        std::fflush(input_);
    }

    // Waits, while `person` goes on, for `text` behind what was shown before.
    bool Shows(const Person& person, const std::string& text) {
        if (!person.Await([&] { return Output().find(text, shown_) != std::string::npos; })) return false;
        shown_ = Output().find(text, shown_) + text.size();
        return true;
    }

    // The exit code.
    int Close() { return input_ == nullptr ? -1 : pclose(std::exchange(input_, nullptr)); }
    std::string Output() const {
        std::ostringstream all;
        all << std::ifstream(output_).rdbuf();
        return all.str();
    }

private:
    const std::string output_ =
        std::filesystem::temp_directory_path() / ("quorix-console-" + std::to_string(std::random_device()()));
    std::FILE* input_;
    std::size_t shown_ = 0;
};

class ConsoleChat : public RealServerTest {
protected:
    void SetUp() override {
        RealServerTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        bob = std::make_unique<Person>(Server(), u"con.bob", u"work");
        ASSERT_TRUE(bob->Join());
        console = std::make_unique<Console>(Server(), "con.ann");
        ASSERT_TRUE(console->Shows(*bob, "Logged in as con.ann@localhost/console.")) << console->Output();
    }
    void TearDown() override {
        if (HasFailure() && console) ADD_FAILURE() << console->Output();
    }
    bool Shows(const std::string& text) { return console->Shows(*bob, text); }
    void Type(const std::string& line) { console->Type(line); }

    std::unique_ptr<Person> bob;
    std::unique_ptr<Console> console;
};

TEST_P(ConsoleChat, DoesAndShowsWhatAChatNeeds) {
    Type("/add con.bob@localhost Böb");
    ASSERT_TRUE(bob->Sees("OnSubscriptionRequest con.ann@localhost 2"));
    (*bob)->SendPresence(u"con.ann@localhost", KV_Subscribe_Accept, u"");
    (*bob)->SendPresence(u"con.ann@localhost", KV_Subscribe, u"");
    ASSERT_TRUE(Shows("con.bob@localhost lets you see") && Shows("con.bob@localhost wants to see you"));
    Type("/accept con.bob@localhost");
    ASSERT_TRUE(bob->Sees("OnSubscriptionAccept con.ann@localhost"));
    Type("/away bin wäg");
    ASSERT_TRUE(bob->Sees("OnPresence con.ann@localhost console 1 2"));
    EXPECT_EQ(bob->log->presences.back()->Status(), u"bin wäg");
    (*bob)->ShowType(KV_DND);
    (*bob)->SendMyPresence();
    ASSERT_TRUE(Shows("con.bob@localhost/work is dnd"));
    Type("/where con.bob@localhost");
    EXPECT_TRUE(Shows("work: dnd, priority 5"));

    Type("/groups con.bob@localhost A; B & C");
    ASSERT_TRUE(Shows("+ Böb <con.bob@localhost> dnd"));
    Type("/rename con.bob@localhost Robert");
    ASSERT_TRUE(Shows("Robert <con.bob@localhost> dnd"));
    EXPECT_THAT(console->Output(), HasSubstr(" [A]"));
    EXPECT_THAT(console->Output(), HasSubstr(" [B & C]"));

    Type("/msg con.bob@localhost/work Grüße");
    ASSERT_TRUE(bob->Sees("OnMessage Grüße") && bob->Sees("OnMessageEvent 0 2"));
    const auto heard = bob->log->messages.back();
    (*bob)->SendEvent(heard->FromJid(), KV_Displayed, heard->ID());
    (*bob)->SendEvent(heard->FromJid(), KV_Composing, heard->ID());
    (*bob)->SendEvent(heard->FromJid(), KV_Composing, heard->ID(), true);
    EXPECT_TRUE(Shows("has seen your message") && Shows("is typing") && Shows("has stopped typing"));

    auto answer = (*bob)->CreateMessage(u"con.ann@localhost/console", MSG_Chat, u"hi", u"");
    answer->AddEvent(KV_Displayed);
    answer->SendMessage();
    ASSERT_TRUE(Shows("con.bob@localhost/work: hi"));
    EXPECT_TRUE(bob->Sees("OnMessageEvent 1 2 con.ann@localhost/console"));
    Type("/typing con.bob@localhost");
    EXPECT_TRUE(bob->Sees("OnMessageEvent 1 1 con.ann@localhost/console"));

    Type("/xhtml con.bob@localhost/work <b>bold</b> &amp; more");
    ASSERT_TRUE(bob->Sees("OnMessage bold"));
    EXPECT_EQ(bob->log->messages.back()->XHTML(), u"<b>bold</b> & more");
    Type("/cc con.bob@localhost/work con.bob@localhost to all");
    EXPECT_TRUE(bob->Sees("OnMessage to all") && bob->Sees("OnMessage to all"));
    Type("/give con.bob@localhost/work con.bob@localhost");
    EXPECT_TRUE(bob->Sees("OnReceiveRosterItem con.bob@localhost Robert"));
    Type("/remove con.bob@localhost");
    EXPECT_TRUE(Shows("<con.bob@localhost>") && Shows(", removed"));
    Type("/quit");
    EXPECT_EQ(console->Close(), 0);
}

QUORIX_ON_EVERY_SERVER(ConsoleChat);

}  // namespace
}  // namespace quorix::real

#endif
