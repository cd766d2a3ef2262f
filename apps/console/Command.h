// The commands that can be typed. This table is the only place that knows them: usage lines, /help,
// completion, the manual and the check of what is typed are made from it.
#pragma once

#include <span>
#include <string_view>

#include "apps/console/Parameters.h"

namespace quorix::console {

class Console;

struct Command {
    enum Trait : unsigned {
        kOffline = 1,  // can be carried out without a connection
        kSecret = 2,   // its values are neither shown again nor remembered
        kAsks = 4,     // something to wait for comes back
    };

    std::string_view name;
    std::string_view usage;
    std::string_view help;
    void (*run)(Console& console, const Words& values);
    unsigned traits = 0;
    std::string_view question = {};  // asked before, when there is no way back

    bool Is(Trait trait) const { return (traits & trait) != 0; }
};

struct CommandGroup {
    std::string_view title;
    std::span<const Command> commands;
};

std::span<const CommandGroup> CommandGroups();

// Null when there is no such command.
const Command* FindCommand(std::string_view name);

// "/msg JID TEXT"
std::string UsageOf(const Command& command);

// Each is the table of one file.
std::span<const Command> ChatCommands();
std::span<const Command> ContactCommands();
std::span<const Command> PresenceCommands();
std::span<const Command> RoomCommands();
std::span<const Command> ServiceCommands();
std::span<const Command> AccountCommands();
std::span<const Command> ProgramCommands();

}  // namespace quorix::console
