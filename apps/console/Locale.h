// UTF-8 and the character set of the locale, which is what a terminal shows.
#pragma once

#include <string>

namespace quorix::console {

// Characters that the locale does not have become \u and their number.
std::string ToLocale(const std::string& utf8);

// Bytes that the locale cannot read are taken for UTF-8.
std::string FromLocale(const std::string& bytes);

}  // namespace quorix::console
