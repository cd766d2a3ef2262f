// Answers each message with its own text. The bot is in EchoBot.h, and echo_bot_test.cpp tests it without a server.
#include "examples/EchoBot.h"

using namespace example;

int main(int count, char** values) {
    const auto session = SessionOf(Arguments(count, values, "HOST PORT USER PASSWORD"), u"bot");
    EchoBot::Start(*session);
    return Run();
}
