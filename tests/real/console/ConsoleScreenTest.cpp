// The console client as a person sees it, on terminals of two sizes and two locales.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#ifdef QUORIX_CONSOLE

#include "testkit/Certificates.h"
#include "testkit/LoopbackServer.h"
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"
#include "tests/real/console/ConsoleProgram.h"
#include "tests/real/console/ConsoleScreen.h"

namespace quorix::real {
namespace {

using namespace testkit;
using ::testing::HasSubstr;
using ::testing::Not;

class ConsoleOnATerminal : public ::testing::Test {
protected:
    void SetUp() override {
        if (!ConsoleScreen::IsPossible()) SkipOrFail("needs /usr/bin/tmux");
        server->AddAccount(u"juliet", {u"secret"});
        port = server->Start();
    }

    std::vector<std::string> Login(std::vector<std::string> more = {}) {
        return LoginOptions(port, "juliet", std::move(more));
    }

    // What is typed, and what then comes on the screen.
    static void Talk(const ConsoleScreen& screen,
                     const std::vector<std::pair<const char*, const char*>>& lines) {
        for (const auto& [typed, shown] : lines) {
            screen.Enter(typed);
            ASSERT_TRUE(screen.Shows(shown));
        }
    }

    int port = 0;
    std::shared_ptr<LoopbackServer> server = LoopbackServer::Create();
};

TEST_F(ConsoleOnATerminal, KeepsPromptAndStatusBelowWhatItPrints) {
    for (const auto& [size, locale] :
         {std::pair(ConsoleScreen::Size{80, 24}, "C.UTF-8"), std::pair(ConsoleScreen::Size{40, 10}, "C")}) {
        const ConsoleScreen screen(size, Login(), locale);
        ASSERT_TRUE(screen.Shows("Logged in as juliet@localhost/console."));
        ASSERT_TRUE(screen.Shows("echo@localhost/loop is online"));  // the last that comes by itself
        screen.Enter("/bogus");
        ASSERT_TRUE(screen.Shows("! There is no command /bogus"));
        EXPECT_THAT(screen.Text(), Not(HasSubstr("> /bogus>")));
        EXPECT_TRUE(RunUntil([&] { return screen.LastLine() == ">"; })) << screen.Text();
        for (int columns : {33, 22, size.columns / 2 + 15}) {
            screen.Type("/w");
            screen.Resize({columns + 20, size.rows});
            screen.Resize({columns, size.rows});
            screen.Press("Enter");
            RunUntil([] { return false; }, 1);  // until it rests
            EXPECT_TRUE(RunUntil([&] { return screen.Count("online, no") == 1; })) << screen.Text();
        }
        screen.Type("/msg half a line");
        ASSERT_TRUE(screen.Shows("> /msg half a line"));
        server->DropConnections();
        ASSERT_TRUE(screen.Shows("Disconnected: "));
        EXPECT_TRUE(screen.Shows("offline, next attempt in "));
        EXPECT_TRUE(RunUntil([&] { return screen.LastLine() == "> /msg half a line"; })) << screen.Text();
        screen.Press("C-u");
        screen.Enter("/quit");
        EXPECT_TRUE(screen.Ended());
    }
}

// What a locale lacks takes more columns there than the character has.
TEST_F(ConsoleOnATerminal, IndentsWhatStrangersWriteInEveryLocale) {
    const ConsoleScreen screen({40, 20}, Login(), "C");
    ASSERT_TRUE(screen.Shows("Logged in"));
    screen.Enter("/msg echo@localhost \u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4 ! forged end");
    ASSERT_TRUE(screen.Shows("echo@localhost: You said:") && screen.Shows("1 unread"));
    std::istringstream lines(screen.Text());
    bool isAnswer = false;
    for (std::string line; std::getline(lines, line) && line.find("unread") == std::string::npos;) {
        EXPECT_TRUE(!isAnswer || line.starts_with("    ")) << screen.Text();
        isAnswer = isAnswer || line.starts_with("echo@localhost:");
    }
    EXPECT_TRUE(isAnswer);
}

TEST_F(ConsoleOnATerminal, CountsTheEntriesOfALongListAndRingsAndColours) {
    const ConsoleScreen screen({}, Login({"--bell", "--color", "always"}));
    // The record is written a little after the screen.
    auto records = [&](const char* text) {
        return RunUntil([&] { return screen.Recorded().find(text) != std::string::npos; });
    };
    ASSERT_TRUE(
        screen.Shows("echo@localhost/loop is online"));  // the last that comes by itself, and ends a count
    screen.Record();
    screen.Enter("/rooms crowd.localhost");
    ASSERT_TRUE(screen.Shows("room r20000@crowd.localhost"));
    EXPECT_TRUE(records("| /rooms: "));
    screen.Record();
    screen.Enter("/msg echo@localhost hello");
    EXPECT_TRUE(records("echo@localhost\x1b[0m: You said: hello\r\n\a")) << screen.Recorded();
}

TEST_F(ConsoleOnATerminal, HoldsWhatIsTypedWithoutAConnectionAndSendsItLater) {
    const ConsoleScreen screen({}, Login({"--reconnect", "2"}));
    ASSERT_TRUE(screen.Shows("Logged in"));
    server->DropConnections();
    ASSERT_TRUE(screen.Shows("Disconnected: "));
    Talk(screen, {{"/msg echo@localhost dropped", "Not connected. Do this when the connection is back?"},
                  {"n", "It was dropped."},
                  {"/msg echo@localhost kept", "/msg echo@localhost kept"},
                  {"y", "echo@localhost: You said: kept"}});
    EXPECT_THAT(screen.Text(), Not(HasSubstr("You said: dropped")));
}

TEST_F(ConsoleOnATerminal, AsksForSecretsUnseenAndRemembersNone) {
    const ConsoleScreen screen({}, Login({"--plain"}));
    ASSERT_TRUE(screen.Shows("Logged in"));
    Talk(screen, {{"/passwd", "Password:"}});
    screen.Press("C-d");
    ASSERT_TRUE(screen.Shows("! /passwd: nothing was done."));
    screen.Enter("/passwd");
    ASSERT_TRUE(screen.Shows("Password:"));
    Talk(screen, {{"new hidden", "Once more:"},
                  {"new hidden", "Password changed."},
                  {"/passwd typed hidden", "> /passwd ***"}});
    screen.Press("Up");
    EXPECT_TRUE(screen.Shows("> /passwd ***"));
    EXPECT_THAT(screen.Text(), Not(HasSubstr("hidden")));
    screen.Press("C-u");
    Talk(screen, {{"/unregister", "for good. Go on? [y/N]"}, {"n", "/unregister: nothing was done."}});
}

TEST_F(ConsoleOnATerminal, AcceptsACertificateByHandUntilItChanges) {
    const TemporaryFolder folder;
    auto use = [&](const Identity& identity) {
        server->UseCertificate(TextFromUtf8(identity.SaveCertificate(folder.Path())),
                               TextFromUtf8(identity.SaveKey(folder.Path())));
    };
    const Identity authority = Authority("Nobody knows this one");
    use(IssuedBy(authority, {}));
    const ConsoleScreen screen({}, Login({"--tls", "--reconnect", "1"}));
    ASSERT_TRUE(screen.Shows("Accept it from now on"));
    EXPECT_THAT(screen.Text(), Not(HasSubstr("Logged in")));
    screen.Enter("y");
    ASSERT_TRUE(screen.Shows("Logged in"));
    use(IssuedBy(authority, {}));  // the same names, another key
    server->DropConnections();
    ASSERT_TRUE(screen.Shows("THE CERTIFICATE HAS CHANGED") && screen.Shows("Accept it from now on"));
    screen.Enter("n");
    EXPECT_TRUE(screen.Ended());
}

TEST_F(ConsoleOnATerminal, CompletesAndTalksToOnePartner) {
    const ConsoleScreen screen({}, Login());
    ASSERT_TRUE(screen.Shows("Logged in"));
    screen.Enter("/msg echo@localhost ä😀 first");
    ASSERT_TRUE(screen.Shows("me to echo@localhost: ä😀 first") && screen.Shows("1 unread"));
    screen.Type("/chat e");
    screen.Press("Tab");
    screen.Press("Enter");
    ASSERT_TRUE(RunUntil([&] { return screen.LastLine() == "echo>"; })) << screen.Text();
    EXPECT_THAT(screen.Text(), Not(HasSubstr("unread")));
    Talk(screen, {{"just typed", "me to echo@localhost: just typed"}, {"/w", "1 echo@localhost <- here"}});
}

TEST(ConsoleCompletion, WorksInTheShells) {
    const TemporaryFolder folder;
    const std::string path = folder.Path();
    const struct {
        const char* file;
        std::string shell, setUp, reference;
    } rows[] = {
        {"/usr/bin/zsh", "zsh -f", "fpath+=(" + path + "); autoload -U compinit; compinit -u -D",
         "zsh >" + path + "/_quorix-console"},
        {"/usr/bin/bash", "bash --norc", "source " + path + "/bash", "bash >" + path + "/bash"},
    };
    for (const auto& [file, shell, setUp, reference] : rows) {
        if (!ConsoleScreen::IsPossible() || !std::filesystem::exists(file)) {
            return SkipOrFail(std::string("needs tmux and ") + file);
        }
        ASSERT_EQ(std::system((std::string(QUORIX_CONSOLE) + " --reference " + reference).c_str()), 0);
        const ConsoleScreen screen({100, 24}, "env PS1='% ' " + shell);
        screen.Enter(setUp + "; echo r''eady");
        ASSERT_TRUE(screen.Shows("ready"));
        screen.Type("quorix-console --remot");
        screen.Press("Tab");
        EXPECT_TRUE(screen.Shows("quorix-console --remote-dns"));
        screen.Type(" --color nev");
        screen.Press("Tab");
        EXPECT_TRUE(screen.Shows("--color never"));
    }
}

}  // namespace
}  // namespace quorix::real

#endif
