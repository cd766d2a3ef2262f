#include "tests/real/console/ConsoleScreen.h"

#ifdef QUORIX_CONSOLE

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

std::string Quoted(const std::string& word) { return "'" + word + "'"; }

}  // namespace

bool ConsoleScreen::IsPossible() { return std::filesystem::exists("/usr/bin/tmux"); }

ConsoleScreen::ConsoleScreen(Size size, const std::vector<std::string>& arguments,
                             const std::string& locale) {
    const std::string folder = folder_.Path();
    std::string program = "env LC_ALL=" + locale + " XDG_CONFIG_HOME=" + folder +
                          " XDG_STATE_HOME=" + folder + " " + QUORIX_CONSOLE + " --no-time";
    for (const std::string& argument : arguments) program += " " + Quoted(argument);
    Start(size, program);
}

ConsoleScreen::ConsoleScreen(Size size, const std::string& program) { Start(size, program); }

void ConsoleScreen::Start(Size size, const std::string& program) const {
    Terminal({"-f", "/dev/null", "new-session", "-d", "-x", std::to_string(size.columns), "-y",
              std::to_string(size.rows), program});
}

ConsoleScreen::~ConsoleScreen() { Terminal({"kill-server"}); }

// Each has a server of its own, so that no test meets another, or a person at work.
std::string ConsoleScreen::Terminal(const std::vector<std::string>& command) const {
    std::string line = "tmux -u -S " + (folder_.Path() / "socket").string();
    for (const std::string& word : command) line += " " + (word == ";" ? word : "\"" + word + "\"");
    FILE* pipe = popen((line + " 2>/dev/null").c_str(), "r");
    std::string output;
    std::array<char, 4096> chunk;
    while (const std::size_t count = fread(chunk.data(), 1, chunk.size(), pipe))
        output.append(chunk.data(), count);
    pclose(pipe);
    return output;
}

void ConsoleScreen::Type(const std::string& text) const { Terminal({"send-keys", "-l", text}); }
void ConsoleScreen::Press(const std::string& key) const { Terminal({"send-keys", key}); }
void ConsoleScreen::Enter(const std::string& text) const {
    Type(text);
    Press("Enter");
}

void ConsoleScreen::Resize(Size size) const {
    Terminal({"resize-window", "-x", std::to_string(size.columns), "-y", std::to_string(size.rows)});
}

std::string ConsoleScreen::Text() const { return Terminal({"capture-pane", "-p"}); }
bool ConsoleScreen::Ended() const {
    return RunUntil([this] { return Terminal({"list-sessions"}).empty(); });
}

void ConsoleScreen::Record() const {
    Terminal({"pipe-pane", "cat >" + (folder_.Path() / "recorded").string()});
}
std::string ConsoleScreen::Recorded() const { return folder_.Read("recorded"); }

std::size_t ConsoleScreen::Count(const std::string& text) const {
    const std::string all = Text();
    std::size_t count = 0;
    for (auto at = all.find(text); at != std::string::npos; at = all.find(text, at + 1)) ++count;
    return count;
}

std::string ConsoleScreen::LastLine() const {
    const std::string text = Text();
    const std::size_t end = text.find_last_not_of('\n');
    const std::size_t start = text.rfind('\n', end);
    return text.substr(start + 1, end - start);
}

bool ConsoleScreen::Shows(const std::string& text) const {
    const bool shown = RunUntil([&] { return Text().find(text) != std::string::npos; });
    EXPECT_TRUE(shown) << text << " is not on:\n" << Text();
    return shown;
}

}  // namespace quorix::real

#endif
