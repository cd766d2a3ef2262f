#include "apps/console/EditTerminal.h"

#include <fmt/core.h>
#include <glib-unix.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

// readline's header needs stdio's first.
#include <readline/history.h>
#include <readline/readline.h>

#include "apps/console/Capability.h"
#include "apps/console/Locale.h"
#include "apps/console/Wrap.h"

namespace quorix::console {

namespace {

constexpr int kHistoryLines = 1000;
constexpr std::int64_t kLongHidden = 200'000;  // microseconds of a long list without prompt and status
constexpr unsigned kRest = 300;  // milliseconds without another change of the terminal's size; tmux tells of
                                 // a second one after 250

void Write(const std::string& utf8) {
    const std::string text = ToLocale(utf8);
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// How many lines of `columns` something of that width takes.
int Lines(int width, int columns) { return (width + columns - 1) / columns; }

}  // namespace

EditTerminal::EditTerminal(Handlers handlers, std::string historyFile)
    : handlers_(std::move(handlers)), historyFile_(std::move(historyFile)) {
    current = this;
    Install();
    using_history();
    stifle_history(kHistoryLines);
    if (!historyFile_.empty()) {
        history_truncate_file(historyFile_.c_str(), kHistoryLines);
        read_history(historyFile_.c_str());
    }
    auto resized = [](gpointer /*self*/) -> gboolean {
        current->Resized();
        return G_SOURCE_CONTINUE;
    };
    resized_ = g_unix_signal_add(SIGWINCH, resized, this);
}

EditTerminal::~EditTerminal() {
    if (resting_ != 0) g_source_remove(resting_);
    if (resting_ != 0) Settle();
    Hide();
    if (showing_ != 0) g_source_remove(showing_);
    g_source_remove(resized_);
    std::fflush(stdout);
    rl_callback_handler_remove();
    current = nullptr;
}

void EditTerminal::Install() {
    ReadTerminalDescription();
    rl_readline_name = "quorix-console";
    rl_catch_signals = 0;  // the program ends by itself, and leaves the terminal as it was
    rl_catch_sigwinch = 0;
    rl_attempted_completion_function = OnComplete;
    rl_completion_display_matches_hook = OnMatches;
    rl_completer_word_break_characters = const_cast<char*>(" ");
    rl_callback_handler_install("", OnEnd);
    rl_redisplay_function =
        OnRedisplay;  // set before, it would make readline take the terminal for a dumb one
    for (Keymap map : {emacs_standard_keymap, vi_insertion_keymap, vi_movement_keymap}) {
        rl_bind_key_in_map('\r', OnEnter, map);
        rl_bind_key_in_map('\n', OnEnter, map);
    }
    ShowSoon();
}

// -- Input --

void EditTerminal::Read() {
    Show();
    rl_callback_read_char();
}

// readline's own way ends the line with a line break first; taken before that, the line gives way to what it
// brings about.
int EditTerminal::OnEnter(int /*count*/, int /*key*/) {
    current->TakeLine();
    return 0;
}

void EditTerminal::OnEnd(char* line) {
    std::free(line);  // NOLINT: readline allocates with malloc
    current->TakeEnd();
}

void EditTerminal::TakeLine() {
    const std::string line = FromLocale(rl_line_buffer);
    Hide();
    rl_replace_line("", 1);
    using_history();
    if (answer_) {
        AnswerQuestion(line);
    } else {
        handlers_.line(line);
    }
    ShowSoon();
}

void EditTerminal::TakeEnd() {
    const int lines = (statusWidth_ > 0 ? 1 : 0) + InputWidth() / std::max(Columns(), 1);
    if (std::exchange(shown_, false)) Erase(lines + 1);  // readline has gone to the next line
    if (answer_) {
        AnswerQuestion({});
        return ShowSoon();
    }
    Pause();
    handlers_.end();
}

void EditTerminal::Ask(const std::string& question, bool secret, Answer answer) {
    Hide();
    if (answer_) AnswerQuestion({});
    question_ = question;
    answer_ = std::move(answer);
    secret_ = secret;
    Resume();
    UsePrompt();
}

void EditTerminal::AnswerQuestion(std::optional<std::string> answer) {
    const Answer take = std::exchange(answer_, nullptr);
    if (!secret_) Print(question_ + answer.value_or(""));
    secret_ = false;
    UsePrompt();
    take(std::move(answer));
}

void EditTerminal::Remember(const std::string& line) {
    add_history(ToLocale(line).c_str());
    if (historyFile_.empty()) return;
    const mode_t mask = umask(077);
    if (append_history(1, historyFile_.c_str()) != 0) write_history(historyFile_.c_str());  // none yet
    umask(mask);
}

// -- Output --

void EditTerminal::Print(const std::string& text) {
    if (resting_ != 0) {
        held_ += text + "\n";
        return;
    }
    Hide();
    Write(text + "\n");
    std::fflush(stdout);
    const bool isLong = showing_ != 0 && g_get_monotonic_time() - hiddenSince_ > kLongHidden;
    isLong ? Show() : ShowSoon();
}

void EditTerminal::Bell() { rl_ding(); }

int EditTerminal::Columns() const {
    int rows = 0;
    int columns = 0;
    rl_get_screen_size(&rows, &columns);
    return columns;
}

std::string EditTerminal::Displayed(const std::string& text) const { return FromLocale(ToLocale(text)); }

void EditTerminal::Prompt(const std::string& prompt) {
    const std::string displayed = Displayed(prompt);
    if (displayed == prompt_) return;
    prompt_ = displayed;
    UsePrompt();
}

void EditTerminal::UsePrompt() {
    Hide();
    ShowSoon();
}

void EditTerminal::Status(const std::string& status) {
    const std::string displayed = Displayed(status);
    if (displayed == status_) return;
    Hide();
    status_ = displayed;
    ShowSoon();
}

// While it is dragged, a terminal breaks its lines anew at each step, and tells late: nothing is drawn until
// it rests.
void EditTerminal::Resized() {
    auto rests = [](gpointer self) -> gboolean {
        static_cast<EditTerminal*>(self)->Settle();
        return G_SOURCE_REMOVE;
    };
    if (resting_ != 0) {
        g_source_remove(resting_);
    } else {
        inputWidth_ = InputWidth();
    }
    resting_ = g_timeout_add(kRest, rests, this);
    rl_reset_screen_size();
}

// Up to the cursor.
int EditTerminal::InputWidth() const {
    const std::string input(rl_line_buffer, static_cast<std::size_t>(rl_point));
    return Width(answer_ ? question_ : prompt_) + (secret_ ? 0 : Width(FromLocale(input)));
}

// A terminal that has become narrower has broken status and input into more lines.
void EditTerminal::Settle() {
    resting_ = 0;
    const int columns = std::max(Columns(), 1);
    if (std::exchange(shown_, false)) Erase(Lines(statusWidth_, columns) + inputWidth_ / columns);
    Write(std::exchange(held_, ""));
    ShowSoon();
}

// Everything from `lines` above the cursor's on.
void EditTerminal::Erase(int lines) {
    std::fputs("\r", stdout);
    for (int line = 0; line < lines; ++line) UseCapability("cuu1");
    UseCapability("ed");
    std::fflush(stdout);
}

// Takes prompt and status off the screen and leaves the cursor where the status began.
void EditTerminal::Hide() {
    if (resting_ != 0) return;
    if (!std::exchange(shown_, false)) return;
    rl_clear_visible_line();
    std::fflush(rl_outstream);
    if (statusWidth_ > 0) Erase(1);
}

void EditTerminal::Show() {
    if (showing_ != 0) g_source_remove(std::exchange(showing_, 0U));
    if (resting_ != 0 || std::exchange(shown_, true)) return;
    const std::string status = HasCapability("cuu1") && !answer_ ? Cut(status_, Columns() - 1) : "";
    statusWidth_ = Width(status);
    if (statusWidth_ > 0) {
        UseCapability("rev");
        Write(status);
        UseCapability("sgr0");
        Write("\n");
    }
    std::fflush(stdout);
    rl_set_prompt(ToLocale(answer_ ? question_ : prompt_).c_str());
    rl_on_new_line();
    rl_forced_update_display();
}

// After everything that is about to be printed at once.
void EditTerminal::ShowSoon() {
    auto show = [](gpointer self) -> gboolean {
        static_cast<EditTerminal*>(self)->showing_ = 0;
        static_cast<EditTerminal*>(self)->Show();
        return G_SOURCE_REMOVE;
    };
    if (showing_ != 0 || shown_) return;
    hiddenSince_ = g_get_monotonic_time();
    showing_ = g_idle_add_full(G_PRIORITY_HIGH_IDLE, show, this, nullptr);
}

// readline draws after each key, also while the prompt is hidden or rests. A secret is edited like any line;
// only the drawing is told that the line is empty.
void EditTerminal::OnRedisplay() {
    if (!current->shown_ || current->resting_ != 0) return;
    if (!current->secret_) return rl_redisplay();
    const int end = std::exchange(rl_end, 0);
    const int point = std::exchange(rl_point, 0);
    const char first = std::exchange(rl_line_buffer[0], '\0');
    rl_redisplay();
    rl_line_buffer[0] = first;
    rl_point = point;
    rl_end = end;
}

// -- Completion --

char** EditTerminal::OnComplete(const char* word, int start, int /*end*/) {
    rl_attempted_completion_over = 1;  // never names of files
    if (current->answer_) return nullptr;
    const std::string before(rl_line_buffer, static_cast<std::size_t>(start));
    const std::vector<std::string> found = current->handlers_.complete(FromLocale(before), FromLocale(word));
    if (found.empty()) return nullptr;
    static std::vector<std::string> words;
    words.clear();
    for (const std::string& each : found) words.push_back(ToLocale(each));
    auto next = [](const char* /*word*/, int state) -> char* {
        static std::size_t index = 0;
        if (state == 0) index = 0;
        return index < words.size() ? strdup(words[index++].c_str()) : nullptr;
    };
    return rl_completion_matches(word, next);
}

void EditTerminal::OnMatches(char** matches, int count, int /*longest*/) {
    std::string line;
    for (int index = 1; index <= count; ++index) line += FromLocale(matches[index]) + "  ";
    current->Print(Wrap(line, current->Columns(), 2));
    current->Show();
}

}  // namespace quorix::console
