// Text in the columns of a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quorix::console {

// The columns that clean UTF-8 takes.
int Width(std::string_view utf8);

// `utf8` in lines of at most `columns`, broken at blanks where there are any; with 0, in the lines that it
// has. All but the first are indented, so that none of them looks like the beginning of something else.
std::string Wrap(std::string_view utf8, int columns, int indent);

// `utf8` cut to `columns`.
std::string Cut(std::string_view utf8, int columns);

}  // namespace quorix::console
