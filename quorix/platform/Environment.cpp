#include "quorix/platform/Environment.h"

#include <charconv>

namespace quorix {

namespace {

thread_local Environment* current = nullptr;

}  // namespace

Environment& Environment::Current() { return current != nullptr ? *current : SystemEnvironment(); }

Environment::Use::Use(Environment& other) : previous_(current) { current = &other; }
Environment::Use::~Use() { current = previous_; }

String DottedAddress(std::uint32_t ip) {
    auto part = [&](unsigned shift) { return ToString((ip >> shift) & 0xFFU); };
    return Concat({part(24), u".", part(16), u".", part(8), u".", part(0)});
}

std::optional<std::uint32_t> ParseDotted(std::string_view text) {
    std::uint32_t ip = 0;
    const char* at = text.data();
    const char* end = at + text.size();
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && (at == end || *at++ != '.')) return {};
        unsigned number = 0;
        auto [next, error] = std::from_chars(at, end, number);
        if (error != std::errc() || number > 255) return {};
        ip = (ip << 8U) | number;
        at = next;
    }
    return at == end ? std::optional(ip) : std::nullopt;
}

}  // namespace quorix
