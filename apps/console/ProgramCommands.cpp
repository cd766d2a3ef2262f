#include <fmt/format.h>

#include <string>

#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

bool IsMeant(const CommandGroup& group, const Command& command, const std::string& word) {
    const String wanted = TextFromUtf8(word);
    return word.empty() || command.name == word || command.name.substr(1) == word ||
           EqualsIgnoringCase(TextFromUtf8(group.title), wanted);
}

void Help(Console& console, const Words& values) {
    const std::string word = Utf8FromText(values[0]);
    bool found = false;
    for (const CommandGroup& group : CommandGroups()) {
        if (word.empty()) console.Show("help-group", {{"name", std::string(group.title)}});
        for (const Command& command : group.commands) {
            if (!IsMeant(group, command, word)) continue;
            found = true;
            console.Show("help", {{"usage", UsageOf(command)}, {"help", std::string(command.help)}});
        }
    }
    if (!found) console.Usage("There is no such command or group of commands.");
}

void Raw(Console& console, const Words& values) {
    console.Session().SendXML(RawXml(console.Session(), values[0]));
}

void Wait(Console& console, const Words& values) { console.Wait(std::stoi(Utf8FromText(values[0]))); }
void Quit(Console& console, const Words& /*values*/) { console.Quit(); }

}  // namespace

std::span<const Command> ProgramCommands() {
    static constexpr Command kCommands[] = {
        {"/raw", "XML", "sends XML as it is", Raw, Command::kSecret},
        {"/wait", "SECONDS", "reads no input for a while (for scripts)", Wait, Command::kOffline},
        {"/help", "[WORD]", "lists the commands, those of a group, or one", Help, Command::kOffline},
        {"/quit", "", "says good-bye and ends", Quit, Command::kOffline},
    };
    return kCommands;
}

}  // namespace quorix::console
