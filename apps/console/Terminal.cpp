#include "apps/console/Terminal.h"

#include <fmt/core.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

// readline's header needs stdio's first.
#include <readline/history.h>
#include <readline/readline.h>

namespace quorix::console {

// Watches standard input; what a derived class does with it differs.
class Terminal::Reader {
public:
    Reader(LineHandler onLine, EndHandler onEnd) : onLine_(std::move(onLine)), onEnd_(std::move(onEnd)) {}
    virtual ~Reader() { Pause(); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void Resume() {
        constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP);
        if (watch_ == 0) watch_ = g_unix_fd_add(STDIN_FILENO, kReadable, OnReady, this);
    }
    void Pause() {
        if (watch_ != 0) g_source_remove(std::exchange(watch_, 0U));
    }

    // At once, since another program may be waiting for it.
    virtual void Print(const std::string& line) {
        fmt::print("{}\n", line);
        std::fflush(stdout);
    }
    virtual bool Ask(const std::string& /*question*/) { return false; }

protected:
    virtual void Read() = 0;

    void Line(const std::string& line) { onLine_(line); }
    void End() {
        Pause();
        onEnd_();
    }

private:
    static gboolean OnReady(gint /*fd*/, GIOCondition /*condition*/, gpointer self) {
        static_cast<Reader*>(self)->Read();
        return G_SOURCE_CONTINUE;
    }

    LineHandler onLine_;
    EndHandler onEnd_;
    guint watch_ = 0;
};

// A terminal with line editing and history. readline calls back without an object, so there is one at a time.
class Terminal::Prompt : public Terminal::Reader {
public:
    Prompt(LineHandler onLine, EndHandler onEnd) : Reader(std::move(onLine), std::move(onEnd)) {
        current = this;
        Install();
    }
    ~Prompt() override {
        rl_callback_handler_remove();
        current = nullptr;
    }

    void Print(const std::string& line) override {
        rl_clear_visible_line();
        fmt::print("{}\n", line);
        std::fflush(stdout);
        rl_on_new_line();
        rl_redisplay();
    }

    bool Ask(const std::string& question) override {
        rl_callback_handler_remove();
        std::unique_ptr<char, decltype(&std::free)> answer(readline(question.c_str()), std::free);
        Install();
        return answer != nullptr && (*answer == 'y' || *answer == 'Y');
    }

protected:
    void Read() override { rl_callback_read_char(); }

private:
    static void Install() { rl_callback_handler_install("> ", OnLine); }

    static void OnLine(char* text) {
        if (text == nullptr) return current->End();
        std::string line(text);
        std::free(text);  // NOLINT: readline allocates with malloc
        if (!line.empty()) add_history(line.c_str());
        current->Line(line);
    }

    inline static Prompt* current = nullptr;
};

// Anything else than a terminal.
class Terminal::Pipe : public Terminal::Reader {
public:
    using Reader::Reader;

protected:
    // One byte at a time, so that nothing is read ahead of a pause.
    void Read() override {
        char byte = 0;
        bool ended = ::read(STDIN_FILENO, &byte, 1) <= 0;
        if (!ended && byte != '\n') {
            pending_ += byte;
            return;
        }
        if (!ended || !pending_.empty()) Line(std::exchange(pending_, {}));
        if (ended) End();
    }

private:
    std::string pending_;
};

Terminal::Terminal(LineHandler onLine, EndHandler onEnd) {
    if (isatty(STDIN_FILENO) != 0) {
        reader_ = std::make_unique<Prompt>(std::move(onLine), std::move(onEnd));
    } else {
        reader_ = std::make_unique<Pipe>(std::move(onLine), std::move(onEnd));
    }
}

Terminal::~Terminal() = default;
void Terminal::Resume() { reader_->Resume(); }
void Terminal::Pause() { reader_->Pause(); }
bool Terminal::Ask(const std::string& question) { return reader_->Ask(question); }
void Terminal::Print(const std::string& line) { reader_->Print(line); }

}  // namespace quorix::console
