#include "apps/console/Reference.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <stdexcept>

#include "apps/console/Command.h"
#include "apps/console/Event.h"
#include "apps/console/ExitCode.h"

namespace quorix::console {

namespace {

// A list serves a page on the web and the manual alike.
std::string Item(const std::string& name, std::string_view help) {
    std::string text = "- `" + name + "`: ";
    for (char c : help) {
        if (c == '<' || c == '*' || c == '_') text += '\\';
        text += c;
    }
    return text + "\n";
}

std::vector<const CLI::Option*> ShownOptions(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
}

std::string NamesOf(const CLI::Option& option) {
    std::string names;
    for (const std::string& name : option.get_snames()) names += ", -" + name;
    for (const std::string& name : option.get_lnames()) names += ", --" + name;
    return names.empty() ? option.get_name() : names.substr(2);
}

std::string OptionList(const CLI::App& app) {
    std::string text;
    for (const CLI::Option* option : ShownOptions(app)) {
        const std::string value = option->get_items_expected() == 0 ? "" : " VALUE";
        text += Item(NamesOf(*option) + value, option->get_description());
    }
    return text;
}

std::string TaskLists(const CLI::App& app) {
    std::string text;
    for (const CLI::App* task : app.get_subcommands({})) {
        text += fmt::format("\n### {}\n\n{}:\n\n{}", task->get_name(), task->get_description(),
                            OptionList(*task));
    }
    return text;
}

std::string CommandLists() {
    std::string text;
    for (const CommandGroup& group : CommandGroups()) {
        text += fmt::format("\n### {}\n\n", group.title);
        for (const Command& command : group.commands) {
            text += Item(UsageOf(command),
                         std::string(command.help) + (command.question.empty() ? "" : "; asks before"));
        }
    }
    return text;
}

std::string ParameterList() {
    std::string text;
    for (const ParameterKind& kind : ParameterKinds()) text += Item(std::string(kind.name), kind.help);
    return text;
}

std::string EventList() {
    std::string text;
    for (const EventForm& form : EventForms()) text += Item(std::string(form.name), form.help);
    return text;
}

std::string ExitCodeList() {
    std::string text;
    for (const auto& [code, help] : kExitCodes) text += Item(std::to_string(static_cast<int>(code)), help);
    return text;
}

std::string Markdown(const CLI::App& app) {
    return fmt::format(
        "## Options\n\n{}{}\n## Commands\n{}\n### Parameters\n\n{}\n## Events\n\n{}\n## Exit codes\n\n{}",
        OptionList(app), TaskLists(app), CommandLists(), ParameterList(), EventList(), ExitCodeList());
}

std::string LongNames(const CLI::App& app) {
    std::string names;
    for (const CLI::Option* option : ShownOptions(app)) {
        for (const std::string& name : option->get_lnames()) names += " --" + name;
    }
    for (const CLI::App* task : app.get_subcommands({})) names += " " + task->get_name();
    return names.substr(1);
}

// The options whose values a shell can complete: file names, or a choice.
constexpr std::string_view kFileOptions[] = {"--config", "--password-file", "--ca", "--exec"};
constexpr std::string_view kChoiceOption = "--color";
constexpr std::string_view kChoices = "always never auto";

std::string Bash(const CLI::App& app) {
    return fmt::format(
        "_quorix_console() {{\n"
        "    local word=${{COMP_WORDS[COMP_CWORD]}}\n"
        "    case ${{COMP_WORDS[COMP_CWORD-1]}} in\n"
        "        {}) COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
        "        {}) COMPREPLY=($(compgen -W '{}' -- \"$word\")) ;;\n"
        "        *) COMPREPLY=($(compgen -W '{}' -- \"$word\")) ;;\n"
        "    esac\n"
        "}}\n"
        "complete -F _quorix_console quorix-console\n",
        fmt::join(kFileOptions, " | "), kChoiceOption, kChoices, LongNames(app));
}

std::string ZshValue(const std::string& name) {
    if (name == kChoiceOption) return fmt::format(":value:({})", kChoices);
    const bool isFile =
        std::find(std::begin(kFileOptions), std::end(kFileOptions), name) != std::end(kFileOptions);
    return isFile ? ":file:_files" : ":value: ";
}

std::string ZshLine(const CLI::Option& option, const std::string& name) {
    std::string help;
    for (char c : option.get_description()) {
        if (c == '\'') help += "'\\'";
        if (c == '[' || c == ']' || c == ':') help += '\\';
        help += c;
    }
    const bool takesValue = option.get_items_expected() != 0;
    return fmt::format("    '{}[{}]{}'", name, help, takesValue ? ZshValue(name) : "");
}

std::string Zsh(const CLI::App& app) {
    std::string text = "#compdef quorix-console\n_arguments";
    for (const CLI::Option* option : ShownOptions(app)) {
        for (const std::string& name : option->get_lnames()) text += " \\\n" + ZshLine(*option, "--" + name);
    }
    std::string tasks;
    for (const CLI::App* task : app.get_subcommands({})) tasks += " " + task->get_name();
    return text + fmt::format(" \\\n    '*:account or task:({})'\n", tasks.substr(1));
}

}  // namespace

std::string Reference(const CLI::App& app, const std::string& kind) {
    if (kind == "markdown") return Markdown(app);
    if (kind == "bash") return Bash(app);
    if (kind == "zsh") return Zsh(app);
    throw std::runtime_error("There is no reference " + kind);
}

std::string ExitCodeHelp() {
    std::string text = "Exit codes:\n";
    for (const auto& [code, help] : kExitCodes)
        text += fmt::format("  {}  {}\n", static_cast<int>(code), help);
    return text;
}

}  // namespace quorix::console
