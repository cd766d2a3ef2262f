// Every transcript, natively.
#include <gmock/gmock.h>

#include "testkit/transcripts/NativeFace.h"
#include "testkit/transcripts/Runner.h"

namespace quorix::transcripts {
namespace {

std::shared_ptr<void> BeginASession(Stage& stage) {
    stage.Add("session", cSession::Create());
    return nullptr;
}

class Natively : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(Natively, HappensAsItIsWritten) { EXPECT_EQ(Play(GetParam(), BeginASession), ""); }

struct Fault {
    std::vector<std::string> steps;  // behind the connection
    std::string failure;             // in what the runner says of the last of them
};

TEST(Transcripts, AreNotPlayedThroughWhereSomethingElseHappens) {
    const std::string header =
        "client: <stream:stream to='s' xmlns='jabber:client' "
        "xmlns:stream='http://etherx.jabber.org/streams'>";
    const Fault faults[] = {
        {{}, "the client has said besides: <stream"},
        {{"client: <stream"}, "the client has said <stream:stream to"},
        {{"server: <stream:stream>"}, "the client has said besides: <stream"},
        {{header, "client: <a"}, "the client has said "},
        {{header, "OnAuthorized"}, "has not come: OnAuthorized"},
        {{header, "session.Disconnect"}, "OnDisConnected has come, not "},
        {{header, "server: <stream:stream>", "OnIncomingXML(\"no\")"}, "$1 is \"<stream:stream>\""},
        {{header, "session.Active = True"}, "session.Active is False"},
        {{header, "session .Active=False .Priority=4"}, "session.Priority is 5"},
        {{header, "session.Roster.Item(1) fails with 5"}, "has failed with 9"},
        {{header, "session.Roster.Count fails with 5"}, "has not failed"},
        {{header, "session.Nothing"}, "cSession has no Nothing"},
    };
    for (const Fault& fault : faults) {
        Scenario scenario;
        scenario.steps = {{"", 2, "session .ServerAddress:=\"s\" .Port:=port .Connect(False)"}};
        for (const std::string& step : fault.steps) scenario.steps.push_back({"", 2, step});
        NativeFace face(BeginASession);
        EXPECT_THAT(Runner(face, scenario).Play(), ::testing::HasSubstr(": " + fault.failure));
    }
}

INSTANTIATE_TEST_SUITE_P(Transcript, Natively, ::testing::ValuesIn(TranscriptsIn(QUORIX_TRANSCRIPTS)),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace quorix::transcripts
