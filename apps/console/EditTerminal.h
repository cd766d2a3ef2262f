// A terminal with line editing, completion and history, and a status line above the prompt.
//
// readline keeps one line and calls back without an object, so there is one at a time.
#pragma once

#include "apps/console/InputWatch.h"
#include "apps/console/Terminal.h"

namespace quorix::console {

class EditTerminal : public Terminal {
public:
    EditTerminal(Handlers handlers, std::string historyFile);
    ~EditTerminal() override;

    bool IsInteractive() const override { return true; }
    void Resume() override { watch_.Resume(); }
    void Pause() override { watch_.Pause(); }
    void Print(const std::string& text) override;
    void Notice(const std::string& text) override { Print(text); }
    void Bell() override;
    int Columns() const override;
    std::string Displayed(const std::string& text) const override;
    void Ask(const std::string& question, bool secret, Answer answer) override;
    void Prompt(const std::string& prompt) override;
    void Status(const std::string& status) override;
    void Remember(const std::string& line) override;

private:
    void Install();
    void Read();
    void TakeLine();
    void TakeEnd();
    void AnswerQuestion(std::optional<std::string> answer);
    void Hide();
    void Erase(int lines);
    void Resized();
    int InputWidth() const;
    void Settle();
    void Show();
    void ShowSoon();
    void UsePrompt();

    static int OnEnter(int count, int key);
    static void OnEnd(char* line);
    static char** OnComplete(const char* word, int start, int end);
    static void OnMatches(char** matches, int count, int longest);
    static void OnRedisplay();

    Handlers handlers_;
    std::string historyFile_;
    InputWatch watch_{[this] { Read(); }};
    std::string prompt_ = "> ";
    std::string status_;
    std::string question_;
    Answer answer_;  // of the question at hand
    bool secret_ = false;
    bool shown_ = false;    // prompt and status are on the screen
    int statusWidth_ = 0;   // as it was drawn
    int inputWidth_ = 0;    // the same, when the terminal's size began to change
    unsigned showing_ = 0;  // the source that will show them
    std::int64_t hiddenSince_ = 0;
    unsigned resized_ = 0;
    unsigned resting_ = 0;  // the source that will take the new size
    std::string held_;      // printed until then

    inline static EditTerminal* current = nullptr;
};

}  // namespace quorix::console
