#include "apps/console/PipeTerminal.h"

#include <fmt/core.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace quorix::console {

// At once, since another program may be waiting for it.
void PipeTerminal::Print(const std::string& text) {
    fmt::print("{}\n", text);
    std::fflush(stdout);
}

void PipeTerminal::Notice(const std::string& text) { fmt::print(stderr, "{}\n", text); }

// One byte at a time, so that nothing is read ahead of a pause.
void PipeTerminal::Read() {
    char byte = 0;
    const bool ended = ::read(STDIN_FILENO, &byte, 1) <= 0;
    if (!ended && byte != '\n') {
        pending_ += byte;
        return;
    }
    if (ended) Pause();
    if (!ended || !pending_.empty()) handlers_.line(std::exchange(pending_, {}));
    if (ended) handlers_.end();
}

}  // namespace quorix::console
