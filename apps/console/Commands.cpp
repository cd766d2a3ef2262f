#include "apps/console/Console.h"
#include "quorix/base/Number.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

void Help(Console& console, Arguments /*arguments*/) {
    for (const Command& command : Commands()) {
        String usage = Concat({command.name, u" ", command.arguments});
        usage.resize(std::max<std::size_t>(usage.size() + 1, 30), u' ');
        console.Print(Concat({usage, command.help}));
    }
}

void Raw(Console& console, Arguments arguments) {
    console.Session().SendXML(WireFromBytes(Utf8FromText(arguments.Rest())));
}

void Wait(Console& console, Arguments arguments) { console.Wait(WireInt16(arguments.Word())); }

void Quit(Console& console, Arguments /*arguments*/) { console.Quit(); }

const std::vector<Command> kProgram{
    {u"/raw", u"XML", u"sends XML as it is", Raw},
    {u"/wait", u"SECONDS", u"reads no input for a while (for scripts)", Wait},
    {u"/help", u"", u"lists the commands", Help},
    {u"/quit", u"", u"says good-bye and ends", Quit},
};

std::vector<Command> Joined(std::initializer_list<std::vector<Command>> parts) {
    std::vector<Command> all;
    for (const std::vector<Command>& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

}  // namespace

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = Joined({ChatCommands(), ServiceCommands(), kProgram});
    return commands;
}

}  // namespace quorix::console
