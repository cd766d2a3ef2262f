#include "apps/console/Command.h"

namespace quorix::console {

std::span<const CommandGroup> CommandGroups() {
    static const CommandGroup groups[] = {
        {"Messages", ChatCommands()},   {"Contacts", ContactCommands()}, {"Presence", PresenceCommands()},
        {"Rooms", RoomCommands()},      {"Services", ServiceCommands()}, {"Account", AccountCommands()},
        {"Program", ProgramCommands()},
    };
    return groups;
}

const Command* FindCommand(std::string_view name) {
    for (const CommandGroup& group : CommandGroups()) {
        for (const Command& command : group.commands) {
            if (command.name == name) return &command;
        }
    }
    return nullptr;
}

std::string UsageOf(const Command& command) {
    std::string usage(command.name);
    if (!command.usage.empty()) usage.append(" ").append(command.usage);
    return usage;
}

}  // namespace quorix::console
