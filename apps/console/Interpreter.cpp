#include "apps/console/Interpreter.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/console/Clean.h"
#include "apps/console/Console.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

constexpr std::size_t kMaxKept = 100;

// A command's line as others may see it.
std::string Harmless(const Command* command, StringView line) {
    const bool isSecret =
        command != nullptr && command->Is(Command::kSecret) && line.find(u' ') != StringView::npos;
    return isSecret ? std::string(command->name) + " ***" : Utf8FromText(line);
}

}  // namespace

void Interpreter::TakeLine(StringView line) {
    line = Trim(line);
    if (line.empty()) return;
    if (StartsWith(line, u"//")) return Say(line.substr(1));
    if (StartsWith(line, u"/")) return TakeCommand(line);
    Say(line);
}

void Interpreter::Say(StringView text) {
    console_.Remember(Utf8FromText(text));
    Chat* chat = console_.Chat().All().Current();
    if (chat == nullptr) {
        return console_.Usage(
            "No chat is open: /chat JID opens one, /msg JID TEXT writes to somebody, /help lists all.");
    }
    const String jid = chat->jid;
    if (!console_.Line().IsOnline()) return Keep(Concat({u"/msg ", jid, u" ", text}));
    Run(*FindCommand("/msg"), {jid, String(text)});
}

void Interpreter::TakeCommand(StringView line) {
    const std::string name = Utf8FromText(line.substr(0, line.find(u' ')));
    const Command* command = FindCommand(name);
    const std::string harmless = Harmless(command, line);
    console_.Show("echo", {{"text", harmless}});
    if (command == nullptr) {
        return console_.Usage(
            fmt::format("There is no command {}; /help lists them.", Clean(name, Lines::one)));
    }
    console_.Remember(harmless);
    Check(*command, line);
}

void Interpreter::Check(const Command& command, StringView line) {
    const ParsedLine parsed = ParseLine(command.usage, line.substr(command.name.size()));
    if (parsed.onlyPasswordMissing && console_.IsInteractive()) return AskForPassword(command, parsed.values);
    if (!parsed.complaint.empty()) {
        return console_.Usage(
            fmt::format("{} Usage: {} ({})", parsed.complaint, UsageOf(command), command.help));
    }
    if (!command.Is(Command::kOffline) && !console_.Line().IsOnline()) return Keep(line);
    Confirm(command, parsed.values);
}

void Interpreter::AskForPassword(const Command& command, const Words& values) {
    console_.AskSecret("Password: ", [this, &command, values](const String& password) {
        if (password.empty()) return console_.Usage(fmt::format("{}: nothing was done.", command.name));
        console_.AskSecret("Once more: ", [this, &command, values, password](const String& again) {
            if (password != again) return console_.Usage("The two are not the same.");
            Words complete = values;
            complete.back() = password;
            Confirm(command, complete);
        });
    });
}

void Interpreter::Confirm(const Command& command, const Words& values) {
    if (command.question.empty()) return Run(command, values);
    console_.Confirm(std::string(command.question), [this, &command, values](bool yes) {
        if (yes) return Run(command, values);
        console_.Usage(fmt::format("{}: nothing was done{}.", command.name,
                                   console_.IsInteractive() ? "" : "; in a script it needs --yes"));
    });
}

void Interpreter::Run(const Command& command, const Words& values) {
    try {
        if (command.Is(Command::kAsks)) console_.WaitFor(command.name);
        command.run(console_, values);
    } catch (const AutomationError& error) {
        console_.Fail(TextFromUtf8(command.name), error.Description());
    }
}

// -- Without a connection --

void Interpreter::Keep(StringView line) {
    const String kept(line);
    if (!console_.IsInteractive()) return console_.Fail(u"Not connected", Concat({u"not done: ", kept}));
    console_.Ask("Not connected. Do this when the connection is back?", [this, kept](bool yes) {
        if (yes && kept_.size() < kMaxKept) kept_.push_back(kept);
        console_.Notice(yes ? "It will be done when the connection is back." : "It was dropped.");
    });
}

void Interpreter::Release() {
    for (const String& line : std::exchange(kept_, {})) TakeLine(line);
}

// -- Completion --

std::vector<std::string> Interpreter::Complete(const std::string& before, const std::string& word) const {
    std::vector<std::string> found;
    auto offer = [&](const std::string& text) {
        const bool isSafe = Clean(text, Lines::one) == text && text.find(' ') == std::string::npos;
        if (isSafe && text.starts_with(word)) found.push_back(text);
    };
    if (before.find_first_not_of(' ') == std::string::npos) {
        for (const CommandGroup& group : CommandGroups()) {
            for (const Command& command : group.commands) offer(std::string(command.name));
        }
        return found;
    }
    const Words words = Parts(TextFromUtf8(before), u' ');
    const Command* command = FindCommand(Utf8FromText(words.front()));
    if (command == nullptr) return found;
    const std::vector<Parameter> parameters = ParametersOf(command->usage);
    if (parameters.empty()) return found;
    const std::size_t index = std::min(words.size() - 1, parameters.size() - 1);
    for (const String& candidate : Candidates(*parameters[index].kind)) offer(Utf8FromText(candidate));
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<String> Interpreter::Candidates(const ParameterKind& kind) const {
    std::vector<String> candidates;
    const bool takesPeople = kind.name == "JID" || kind.name == "CONTACTS";
    for (const Chat& chat : console_.Chat().All().All()) {
        if (takesPeople || (kind.name == "ROOM" && chat.isRoom)) candidates.push_back(chat.jid);
    }
    if (takesPeople) {
        for (const auto& contact : console_.Session().Roster())
            candidates.push_back(console_.Text(contact->JID()));
        for (const auto& agent : console_.Session().Agents())
            candidates.push_back(console_.Text(agent->JID()));
    }
    if (kind.name == "VALUES") {
        for (const CardLine& line : CardLines())
            candidates.push_back(TextFromUtf8(std::string(line.name) + "="));
    }
    if (kind.name == "WORD") {
        for (const CommandGroup& group : CommandGroups()) {
            candidates.push_back(TextFromUtf8(group.title));
            for (const Command& command : group.commands) candidates.push_back(TextFromUtf8(command.name));
        }
    }
    return candidates;
}

}  // namespace quorix::console
