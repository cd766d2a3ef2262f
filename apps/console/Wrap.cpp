#include "apps/console/Wrap.h"

#include <glib.h>

#include <algorithm>

namespace quorix::console {

namespace {

int WidthOf(gunichar c) {
    if (g_unichar_iszerowidth(c) != 0) return 0;
    return g_unichar_iswide(c) != 0 ? 2 : 1;
}

// How many bytes at the front of `text` fit into `columns`: all, or at least one character.
std::size_t Fitting(std::string_view text, int columns) {
    const char* at = text.data();
    const char* end = at + text.size();
    int used = 0;
    while (at < end) {
        used += WidthOf(g_utf8_get_char(at));
        if (used > columns && at > text.data()) break;
        at = g_utf8_next_char(at);
    }
    return static_cast<std::size_t>(at - text.data());
}

// Where the first line of `text` ends: at the last blank that fits, else where the room ends.
std::size_t LineEnd(std::string_view text, int columns) {
    const std::size_t fits = Fitting(text, columns);
    if (fits == text.size()) return fits;
    const std::size_t blank = text.rfind(' ', fits);
    return blank == std::string_view::npos || blank == 0 ? fits : blank;
}

}  // namespace

int Width(std::string_view utf8) {
    int width = 0;
    for (const char* at = utf8.data(); at < utf8.data() + utf8.size(); at = g_utf8_next_char(at)) {
        width += WidthOf(g_utf8_get_char(at));
    }
    return width;
}

std::string Wrap(std::string_view utf8, int columns, int indent) {
    if (columns > 0 && indent * 2 > columns) indent = std::min(4, columns / 4);
    const std::string margin(static_cast<std::size_t>(indent), ' ');
    std::string result;
    int room = columns;
    while (true) {
        const std::string_view line = utf8.substr(0, utf8.find('\n'));
        std::size_t end = columns > 0 ? LineEnd(line, room) : line.size();
        result += line.substr(0, end);
        if (end == utf8.size()) return result;
        const bool endsAtBreak = utf8[end] == '\n' || utf8[end] == ' ';
        utf8.remove_prefix(endsAtBreak ? end + 1 : end);
        result += "\n" + margin;
        room = columns - indent;
    }
}

std::string Cut(std::string_view utf8, int columns) {
    return columns > 0 && Width(utf8) > columns ? std::string(utf8.substr(0, Fitting(utf8, columns)))
                                                : std::string(utf8);
}

}  // namespace quorix::console
