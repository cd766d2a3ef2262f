#include "apps/console/Terminal.h"

#include <unistd.h>

#include "apps/console/EditTerminal.h"
#include "apps/console/PipeTerminal.h"

namespace quorix::console {

std::unique_ptr<Terminal> Terminal::Create(Handlers handlers, std::string historyFile) {
    if (isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0) {
        return std::make_unique<EditTerminal>(std::move(handlers), std::move(historyFile));
    }
    return std::make_unique<PipeTerminal>(std::move(handlers));
}

}  // namespace quorix::console
