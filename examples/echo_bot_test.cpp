// Tests the echo bot without a server, a socket or a wait: the transcript that its argument names is what the server
// says, what the bot sends, and what becomes of it. Ends with 0 when all happens as it is written there.
#include "examples/EchoBot.h"
#include "testkit/transcripts/Transcript.h"

using namespace example;

std::shared_ptr<void> Begin(transcripts::Stage& stage) {
    ending = {};
    const auto session = SessionOf({u"localhost", u"5222", u"romeo", u"secret"}, u"bot");
    stage.Add("session", session);
    stage.Add("program.Ending", [](const auto&) { return ending.isReached ? ToString(ending.code) : u"none"; });
    EchoBot::Start(*session);
    return session;
}

int main(int /*count*/, char** values) {
    const std::string failures = transcripts::Play(values[1], Begin);
    std::cout << failures;
    return failures.empty() ? 0 : 1;
}
