#include "apps/console/Output.h"

#include <fmt/args.h>
#include <fmt/chrono.h>
#include <fmt/color.h>

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>

#include "apps/console/Clean.h"
#include "apps/console/Wrap.h"

namespace quorix::console {

namespace {

constexpr int kIndent = 4;
constexpr int kHelpColumn = 30;

// Only the text of a message may have lines; a break in a name or an address is a trick.
std::string Shown(const Field& field) {
    if (const auto* number = std::get_if<std::int64_t>(&field.value)) return std::to_string(*number);
    if (const auto* flag = std::get_if<bool>(&field.value)) return *flag ? "yes" : "no";
    const bool isText = std::string_view(field.name) == "text";
    return Clean(std::get<std::string>(field.value), isText ? Lines::many : Lines::one);
}

std::string Composed(const EventForm& form, const Fields& fields) {
    fmt::dynamic_format_arg_store<fmt::format_context> values;
    for (const Field& field : fields) values.push_back(fmt::arg(field.name, Shown(field)));
    std::string text = fmt::vformat(form.pattern, values);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// In two columns where there is room for them.
std::string HelpOf(const Fields& fields, int columns) {
    const bool isNarrow = columns > 0 && columns < 2 * kHelpColumn;
    const std::string usage = Shown(fields[0]);
    const std::string help = Shown(fields[1]);
    return isNarrow ? usage + "\n" + help : fmt::format("{:<{}} {}", usage, kHelpColumn - 1, help);
}

// ASCII only, so that it is the same in every locale and no control character survives.
std::string Json(const EventForm& form, const Fields& fields) {
    using nlohmann::ordered_json;
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    ordered_json event{{"event", form.name}, {"time", fmt::format("{:%FT%TZ}", now)}};
    for (const Field& field : fields) {
        if (field.name[0] == '_') continue;
        std::visit([&](const auto& value) { event[field.name] = value; }, field.value);
    }
    return event.dump(-1, ' ', true, ordered_json::error_handler_t::replace);
}

std::string Clock() { return fmt::format("{:%H:%M} ", fmt::localtime(std::time(nullptr))); }

// Each sender has a colour of its own, the same in every run.
fmt::text_style SenderStyle(std::string_view sender) {
    constexpr fmt::terminal_color kColors[] = {fmt::terminal_color::green, fmt::terminal_color::yellow,
                                               fmt::terminal_color::blue, fmt::terminal_color::magenta,
                                               fmt::terminal_color::cyan};
    return fmt::emphasis::bold | fmt::fg(kColors[std::hash<std::string_view>{}(sender) % std::size(kColors)]);
}

fmt::text_style KindStyle(EventKind kind) {
    switch (kind) {
        case EventKind::error: return fmt::fg(fmt::terminal_color::red);
        case EventKind::data:
        case EventKind::list: return {};
        default: return fmt::emphasis::faint;
    }
}

}  // namespace

void Output::Show(std::string_view name, const Fields& fields) {
    const EventForm& form = FormOf(name);
    hadError_ = hadError_ || form.kind == EventKind::error;
    if (style_.json) return terminal_.Print(Json(form, fields));
    if (form.kind == EventKind::echo && !terminal_.IsInteractive()) return;
    if (form.kind == EventKind::notice && style_.quiet) return;
    if (form.kind != EventKind::error && style_.onlyErrors) return;
    ShowLine(form, fields);
    if (style_.bell && name == "message") terminal_.Bell();
}

void Output::ShowLine(const EventForm& form, const Fields& fields) {
    const std::string clock = style_.times && form.kind != EventKind::list ? Clock() : "";
    const bool isHelp = form.name == "help";
    const int indent = isHelp ? kHelpColumn : kIndent;
    const std::string words = isHelp ? HelpOf(fields, terminal_.Columns()) : Composed(form, fields);
    const std::string composed = terminal_.Displayed(clock + words);
    const std::string text = Wrap(composed, terminal_.Columns(), indent);
    const std::string line = style_.colors ? Painted(form, fields, text) : text;
    const bool isData = form.kind == EventKind::data || form.kind == EventKind::list;
    isData ? terminal_.Print(line) : terminal_.Notice(line);
}

std::string Output::Painted(const EventForm& form, const Fields& fields, const std::string& text) const {
    const fmt::text_style style = form.name == "sent" ? fmt::text_style() : KindStyle(form.kind);
    if (form.name != "message") return fmt::format(style, "{}", text);
    const std::string sender = Shown(fields.front());
    const std::size_t at = text.find(sender);
    if (at == std::string::npos) return text;
    return text.substr(0, at) + fmt::format(SenderStyle(sender), "{}", sender) +
           text.substr(at + sender.size());
}

}  // namespace quorix::console
