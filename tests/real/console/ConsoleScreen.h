// The console client on a terminal of its own, as a person sees it.
#pragma once

#include <string>
#include <vector>

#include "testkit/TemporaryFolder.h"

namespace quorix::real {

class ConsoleScreen {
public:
    struct Size {
        int columns = 80;
        int rows = 24;
    };

    // `locale` is the program's; the terminal itself shows everything.
    ConsoleScreen(Size size, const std::vector<std::string>& arguments,
                  const std::string& locale = "C.UTF-8");
    // Any other program, by its command line.
    ConsoleScreen(Size size, const std::string& program);
    ~ConsoleScreen();
    ConsoleScreen(const ConsoleScreen&) = delete;
    ConsoleScreen& operator=(const ConsoleScreen&) = delete;

    static bool IsPossible();  // the terminal's program is installed

    void Type(const std::string& text) const;
    void Press(const std::string& key) const;  // "Enter", "Tab", "C-d"
    void Enter(const std::string& text) const;
    void Resize(Size size) const;

    // Waits until `text` is on the screen.
    bool Shows(const std::string& text) const;
    bool Ended() const;
    // What is on the screen, line by line, without blanks at the ends.
    std::string Text() const;
    // From now on, what the program writes, as it writes it.
    void Record() const;
    std::string Recorded() const;
    // How many times `text` is there.
    std::size_t Count(const std::string& text) const;
    // The last line that holds anything.
    std::string LastLine() const;

private:
    void Start(Size size, const std::string& program) const;
    std::string Terminal(const std::vector<std::string>& command) const;

    testkit::TemporaryFolder folder_;
};

}  // namespace quorix::real
