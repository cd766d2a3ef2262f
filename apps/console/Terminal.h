// Lines in and out: readline on a terminal, plain lines through a pipe.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorix::console {

class Terminal {
public:
    using LineHandler = std::function<void(const std::string& line)>;
    using EndHandler = std::function<void()>;

    // Handlers are called from the thread's message loop, one line at a time.
    Terminal(LineHandler onLine, EndHandler onEnd);
    ~Terminal();

    // Lines are read between Resume and Pause only. A new terminal is paused.
    void Resume();
    void Pause();

    // Prints one line without disturbing what is being typed.
    void Print(const std::string& line);

private:
    class Reader;
    class Prompt;
    class Pipe;
    std::unique_ptr<Reader> reader_;
};

}  // namespace quorix::console
