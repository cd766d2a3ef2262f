#include "apps/console/Password.h"

#include <bsd/readpassphrase.h>

#include <string.h>
#include <array>
#include <fstream>
#include <stdexcept>

#include "apps/console/Locale.h"

namespace quorix::console {

std::string PasswordFromFile(const std::string& file) {
    std::ifstream stream(file);
    if (!stream) throw std::runtime_error("cannot read " + file);
    std::string line;
    std::getline(stream, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) throw std::runtime_error("there is no password in " + file);
    return line;
}

std::optional<std::string> AskPassword(const std::string& account) {
    std::array<char, 1024> typed{};
    const std::string question = "Password of " + account + ": ";
    const char* answer = readpassphrase(question.c_str(), typed.data(), typed.size(), RPP_REQUIRE_TTY);
    std::optional<std::string> password;
    if (answer != nullptr) password = FromLocale(answer);
    explicit_bzero(typed.data(), typed.size());
    return password;
}

}  // namespace quorix::console
