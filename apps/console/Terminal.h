// Lines in and out: with editing, history and a status line on a terminal; plain lines through a pipe.
//
// Text is clean UTF-8; a terminal gets it in the character set of the locale, a pipe as it is.
// Threads: handlers are called from the thread's message loop, one line at a time.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorix::console {

class Terminal {
public:
    struct Handlers {
        std::function<void(const std::string& line)> line;
        std::function<void()> end;
        // What could stand in the place of `word`, which begins at `before`'s end.
        std::function<std::vector<std::string>(const std::string& before, const std::string& word)> complete;
    };
    using Answer = std::function<void(std::optional<std::string> answer)>;

    // A terminal when both standard input and output are one. `historyFile` may be "".
    static std::unique_ptr<Terminal> Create(Handlers handlers, std::string historyFile);

    virtual ~Terminal() = default;
    Terminal() = default;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    virtual bool IsInteractive() const = 0;

    // Lines are read between Resume and Pause only. A new terminal is paused.
    virtual void Resume() = 0;
    virtual void Pause() = 0;

    // Data, and what is about the program itself, without disturbing what is being typed.
    virtual void Print(const std::string& text) = 0;
    virtual void Notice(const std::string& text) = 0;
    virtual void Bell() {}

    // The columns that text may take; 0 when there is no limit. They are those of `Displayed` text, in which
    // escapes stand for what the locale lacks.
    virtual int Columns() const { return 0; }
    virtual std::string Displayed(const std::string& text) const { return text; }

    // Puts a question in the place of the prompt; the next line is the answer. Secret ones are not shown as
    // they are typed. When nobody can be asked, or input ends, there is no answer.
    virtual void Ask(const std::string& question, bool secret, Answer answer) = 0;

    virtual void Prompt(const std::string& /*prompt*/) {}
    virtual void Status(const std::string& /*status*/) {}

    // Remembers a line for the next runs too.
    virtual void Remember(const std::string& /*line*/) {}
};

}  // namespace quorix::console
