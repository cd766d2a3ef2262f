// Runs each program of examples/ as somebody who tries it out would, beside a friend who has an account too.
#include <gtest/gtest.h>

#include <filesystem>

#include "testkit/LoopbackServer.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

constexpr int kRunsOn = -1;
constexpr const char* kFriendJid = "ben@localhost/home";

// The program's account has its name. The friend says `told` to it, and hears of `hears`.
struct ExampleCase {
    const char* program;
    std::vector<std::string> more;  // arguments behind HOST PORT USER PASSWORD
    const char* told;
    const char* shows;
    const char* hears;
    int code;
    std::vector<std::string> before = {};  // what runs the program
};

// What polite people do.
struct Politeness : SessionEvents {
    explicit Politeness(cSession& its) : session(its) {}
    void OnSubscriptionRequest(StringView from, std::int32_t, StringView) override {
        session.SendPresence(from, KV_Subscribe_Accept, {});
    }
    void OnOOBRequest(StringView from, StringView, StringView) override { session.SendOOBComplete(from); }
    cSession& session;
};

class Program {
public:
    Program(const ExampleCase& example, std::vector<std::string> arguments) {
        std::vector<std::string> command = example.before;
        command.push_back(Path(example.program));
        command.insert(command.end(), arguments.begin(), arguments.end());
        process_ =
            std::make_unique<Process>(ProcessSetup{command, {}, folder_.Path(), folder_.Path() / "output"});
    }
    static std::string Path(const char* program) { return std::string(QUORIX_EXAMPLES "/") + program; }

    bool Shows(const std::string& text) const { return Output().find(text) != std::string::npos; }
    // Once it has ended.
    int ExitCode() const {
        RunUntil([&] { return !process_->Running(); });
        return process_->ExitCode();
    }
    std::string Output() const { return folder_.Read("output"); }

private:
    testkit::TemporaryFolder folder_;
    std::unique_ptr<Process> process_;
};

// Calls `act` every second: what is written to somebody who just appears may wait on the server until next
// time.
void Check(
    const Program& program, const ExampleCase& example, const std::function<void()>& act = [] {},
    const std::function<bool()>& heard = [] { return true; }) {
    auto isDone = [&] { return program.Shows(example.shows) && heard(); };
    for (int second = 0; second < 15 && !isDone(); ++second) {
        act();
        RunUntil(isDone, 1);
    }
    EXPECT_TRUE(isDone()) << example.program << ": " << program.Output();
    if (example.code == kRunsOn) return;
    EXPECT_EQ(program.ExitCode(), example.code) << program.Output();
}

const ExampleCase kOnAServer[] = {
    {"print_messages", {}, "Hello", "ben@localhost/home: Hello", "", kRunsOn},
    {"echo_bot", {}, "Hello", "logged in as echo_bot@localhost", "OnMessage Hello", kRunsOn},
    {"roster",
     {"ben@localhost"},
     "",
     "ben@localhost is there: ",
     "OnSubscriptionRequest roster@localhost",
     kRunsOn},
    {"room_visitor", {"hall@conference.localhost", "Ann"}, "", "Ann: Hello, everybody!", "", kRunsOn},
    {"file_offer", {kFriendJid, "http://localhost/f", "a file"}, "", "has fetched it", "OnOOBRequest ", 0},
    {"gateway", {}, "pat: Hello", "", "OnMessage pat: I have read: Hello", kRunsOn},
    {"probe", {"20"}, "", "OK: ejabberd", "", 0},
    {"many_sessions", {"20"}, "", "each has heard from another", "", 0},
    {"two_threads", {}, "", "the main thread was handed: from the thread", "", 0},
    {"glib_loop", {}, "bye", "ben@localhost/home: bye", "", 0},
    {"qt_loop", {}, "bye", "ben@localhost/home: bye", "", 0},
    {"gtk_loop", {}, "bye", "ben@localhost/home: bye", "", 0, {"xvfb-run", "-a"}},
};

// Toolkits are no part of what the tests need.
bool IsLeftOut(const ExampleCase& example) {
    const bool isForToolkit = example.program == std::string("qt_loop") || !example.before.empty();
    auto isMissing = [](const std::string& file) { return !std::filesystem::exists(file); };
    return isForToolkit && (isMissing(Program::Path(example.program)) ||
                            (!example.before.empty() && isMissing("/usr/bin/" + example.before[0])));
}

class Examples : public RealServerTest {
protected:
    // Never available: what is written to it waits for the program.
    bool MakeAccount(const String& name) const {
        const Person person(Server().Port(), name, u"home");
        person->Connect(true);
        return person.AwaitEvent("OnAuthorized");
    }
};

TEST_P(Examples, DoWhatTheySayOnAServer) {
    Person ben(Server().Port(), u"ben", u"home");
    ben->Advise(std::make_shared<Politeness>(*ben.operator->()));
    ASSERT_TRUE(ben.Join());
    for (const ExampleCase& example : kOnAServer) {
        if (IsLeftOut(example)) continue;
        const String user = TextFromUtf8(example.program);
        ASSERT_TRUE(MakeAccount(user));
        auto tell = [&] {
            if (*example.told == 0) return;
            ben->CreateMessage(user + u"@localhost", MSG_Chat, TextFromUtf8(example.told), {})->SendMessage();
        };
        std::vector<std::string> arguments = {"localhost", std::to_string(Server().Port()), example.program,
                                              "secret"};
        arguments.insert(arguments.end(), example.more.begin(), example.more.end());
        Check(Program(example, arguments), example, tell,
              [&] { return *example.hears == 0 || ben.HasSeen(example.hears); });
    }
}

// A directory, and what goes wrong, are the same each time on the server in this process.
TEST(ExamplesOnLoopback, DoWhatTheySay) {
    const auto server = testkit::LoopbackServer::Create();
    server->AddAccount(u"ann", {u"secret"});
    const std::string port = std::to_string(server->Start());
    const ExampleCase search = {"search", {}, "", "found tybalt@localhost\n  nick = cat", "", 0};
    Check(Program(search, {"localhost", port, "ann", "secret", "last", "Capulet"}), search);
    const ExampleCase refused = {"echo_bot", {}, "", "error 401 from localhost: Unauthorized", "", 1};
    Check(Program(refused, {"localhost", port, "ann", "wrong"}), refused);
    const ExampleCase down = {"probe", {}, "", "CRITICAL: ", "", 2};
    Check(Program(down, {"localhost", "1", "ann", "secret", "5"}), down);
    const ExampleCase usage = {"roster", {}, "", "HOST PORT USER PASSWORD CONTACT", "", 2};
    Check(Program(usage, {"localhost"}), usage);
}

INSTANTIATE_TEST_SUITE_P(Real, Examples, ::testing::Values(ServerKind::ejabberd), NameOfCase);

}  // namespace
}  // namespace quorix::real
