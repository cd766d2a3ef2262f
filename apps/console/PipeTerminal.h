// Input or output that is no terminal: one command a line, data alone on standard output.
#pragma once

#include "apps/console/InputWatch.h"
#include "apps/console/Terminal.h"

namespace quorix::console {

class PipeTerminal : public Terminal {
public:
    explicit PipeTerminal(Handlers handlers) : handlers_(std::move(handlers)) {}

    bool IsInteractive() const override { return false; }
    void Resume() override { watch_.Resume(); }
    void Pause() override { watch_.Pause(); }
    void Print(const std::string& text) override;
    void Notice(const std::string& text) override;
    void Ask(const std::string& /*question*/, bool /*secret*/, Answer answer) override { answer({}); }

private:
    void Read();

    Handlers handlers_;
    InputWatch watch_{[this] { Read(); }};
    std::string pending_;
};

}  // namespace quorix::console
