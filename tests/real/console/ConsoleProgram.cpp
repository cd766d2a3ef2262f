#include "tests/real/console/ConsoleProgram.h"

#ifdef QUORIX_CONSOLE

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

constexpr int kPatience = 20;  // seconds

}  // namespace

std::vector<std::string> LoginOptions(int port, const std::string& user, std::vector<std::string> more) {
    more.insert(more.begin(),
                {user + "@localhost/console", "--port", std::to_string(port), "--password", "secret"});
    return more;
}

ConsoleProgram::ConsoleProgram(std::vector<std::string> arguments,
                               std::map<std::string, std::string> environment) {
    arguments.insert(arguments.begin(), QUORIX_CONSOLE);
    environment.insert({{"XDG_CONFIG_HOME", folder_.Path()}, {"XDG_STATE_HOME", folder_.Path()}});
    const std::string pipe = folder_.Path() / "pipe";
    mkfifo(pipe.c_str(), 0600);
    input_ = open(pipe.c_str(), O_RDWR | O_CLOEXEC);  // the program need not wait for a writer
    program_ = std::make_unique<Process>(
        ProcessSetup{arguments, environment, folder_.Path(), folder_.Path() / "output", "", pipe});
}

ConsoleProgram::~ConsoleProgram() { close(input_); }

void ConsoleProgram::Type(const std::string& line) const {
    EXPECT_EQ(write(input_, (line + "\n").data(), line.size() + 1), std::ptrdiff_t(line.size() + 1));
}

bool ConsoleProgram::Shows(const std::string& text) {
    std::size_t found = 0;
    if (!RunUntil([&] { return (found = Output().find(text, shown_)) != std::string::npos; })) {
        ADD_FAILURE() << text << " is not in:\n" << Output();
        return false;
    }
    shown_ = found + text.size();
    return true;
}

std::string ConsoleProgram::OutputAfter(const std::string& lines) {
    Type(lines + "/quit");
    ExitCode();
    return Output();
}

int ConsoleProgram::ExitCode() {
    EXPECT_TRUE(RunUntil([&] { return !program_->Running(); }, kPatience)) << Output();
    return program_->ExitCode();
}

}  // namespace quorix::real

#endif
