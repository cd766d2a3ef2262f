#include "apps/console/Clean.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <memory>

namespace quorix::console {

namespace {

constexpr const char* kFirstStrongIsolate = "\u2068";
constexpr const char* kPopIsolate = "\u2069";
constexpr gunichar kNonJoiner = 0x200C;
constexpr gunichar kJoiner = 0x200D;

// Scripts shape words and emoji with joiners, and flags are spelt with tags.
bool IsHarmlessFormat(gunichar c) {
    return c == kNonJoiner || c == kJoiner || (c >= 0xE0020 && c <= 0xE007F);
}

bool IsLineBreak(gunichar c) {
    const GUnicodeType type = g_unichar_type(c);
    return c == '\n' || c == '\r' || type == G_UNICODE_LINE_SEPARATOR ||
           type == G_UNICODE_PARAGRAPH_SEPARATOR;
}

bool NeedsMark(gunichar c) {
    const GUnicodeType type = g_unichar_type(c);
    return type == G_UNICODE_CONTROL || IsLineBreak(c) || (type == G_UNICODE_FORMAT && !IsHarmlessFormat(c));
}

// The blocks that Unicode reserves for scripts from right to left.
bool IsRightToLeft(gunichar c) {
    constexpr struct {
        gunichar first, last;
    } kBlocks[] = {
        {0x590, 0x8FF}, {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFE}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF}};
    return std::any_of(std::begin(kBlocks), std::end(kBlocks),
                       [c](const auto& block) { return c >= block.first && c <= block.last; });
}

// One line on its way to the screen.
class CleanLine {
public:
    void Add(gunichar c, std::string_view bytes) {
        if (c == '\t') {
            text_ += ' ';
        } else if (NeedsMark(c)) {
            text_ += fmt::format("<U+{:04X}>", c);
        } else {
            text_ += bytes;
        }
        rightToLeft_ = rightToLeft_ || IsRightToLeft(c);
    }
    std::string Text() const { return rightToLeft_ ? kFirstStrongIsolate + text_ + kPopIsolate : text_; }

private:
    std::string text_;
    bool rightToLeft_ = false;
};

}  // namespace

std::string Clean(std::string_view utf8, Lines lines) {
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(utf8.data(), static_cast<gssize>(utf8.size())), g_free);
    std::string result;
    CleanLine line;
    for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
        const gunichar c = g_utf8_get_char(at);
        if (c == '\r' && at[1] == '\n') continue;
        if (lines == Lines::many && IsLineBreak(c)) {
            result += line.Text() + "\n";
            line = {};
            continue;
        }
        line.Add(c, std::string_view(at, static_cast<std::size_t>(g_utf8_next_char(at) - at)));
    }
    return result + line.Text();
}

}  // namespace quorix::console
