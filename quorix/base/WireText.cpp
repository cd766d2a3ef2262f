#include "quorix/base/WireText.h"

#include <algorithm>
#include <cstring>

namespace quorix {

namespace {

constexpr char32_t kReplacementCode = 0xFFFD;

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
bool IsSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xE000; }

char32_t TakeCodePoint(StringView& text) {
    char16_t first = text.front();
    text.remove_prefix(1);
    if (IsLowSurrogate(first)) return kReplacementCode;
    if (!IsHighSurrogate(first)) return first;
    if (text.empty() || !IsLowSurrogate(text.front())) return kReplacementCode;
    char32_t low = text.front();
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800U) << 10U) + (low - 0xDC00U);
}

char* PutUtf8(char* out, char32_t code) {
    auto tail = [&](unsigned shift) { *out++ = static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80) {
        *out++ = static_cast<char>(code);
    } else if (code < 0x800) {
        *out++ = static_cast<char>(0xC0U | (code >> 6U));
        tail(0);
    } else if (code < 0x10000) {
        *out++ = static_cast<char>(0xE0U | (code >> 12U));
        tail(6), tail(0);
    } else {
        *out++ = static_cast<char>(0xF0U | (code >> 18U));
        tail(12), tail(6), tail(0);
    }
    return out;
}

constexpr std::size_t kPiece = 16384;  // twice as much fits into 16 bits

// The size in UTF-8, exact without surrogates; a pair of these takes less.
std::size_t Utf8Bound(StringView text) {
    std::size_t size = text.size();
    while (!text.empty()) {
        const StringView piece = text.substr(0, kPiece);
        std::uint16_t more = 0;  // of the units' own width, so that the compiler counts many in one step
        for (char16_t c : piece) more += (c >= 0x80 ? 1U : 0U) + (c >= 0x800 ? 1U : 0U);
        size += more;
        text.remove_prefix(piece.size());
    }
    return size;
}

constexpr std::size_t kWord = sizeof(std::uint64_t);

std::uint64_t WordAt(const void* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, kWord);
    return word;
}

bool IsAsciiWord(const char* at) { return (WordAt(at) & 0x8080808080808080U) == 0; }

struct Sequence {
    unsigned length;
    char32_t lead;
    char32_t least;  // smaller values are overlong
};

Sequence SequenceOf(unsigned char first) {
    if (first < 0x80) return {1, first, 0};
    if (first >= 0xC2 && first < 0xE0) return {2, first & 0x1FU, 0x80};
    if (first >= 0xE0 && first < 0xF0) return {3, first & 0x0FU, 0x800};
    if (first >= 0xF0 && first < 0xF5) return {4, first & 0x07U, 0x10000};
    return {0, 0, 0};
}

char32_t DecodeUtf8(std::string_view& utf8) {
    Sequence sequence = SequenceOf(static_cast<unsigned char>(utf8.front()));
    char32_t code = sequence.lead;
    bool good = sequence.length > 0 && sequence.length <= utf8.size();
    for (unsigned i = 1; good && i < sequence.length; ++i) {
        auto next = static_cast<unsigned char>(utf8[i]);
        good = (next & 0xC0U) == 0x80U;
        code = (code << 6U) | (next & 0x3FU);
    }
    good = good && code >= sequence.least && code < 0x110000 && (code < 0xD800 || code >= 0xE000);
    utf8.remove_prefix(good ? sequence.length : 1);
    return good ? code : kReplacementCode;
}

char16_t* PutUtf16(char16_t* out, char32_t code) {
    if (code < 0x10000) {
        *out++ = static_cast<char16_t>(code);
        return out;
    }
    *out++ = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10U));
    *out++ = static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FFU));
    return out;
}

// Into the end of `result` from `at` on, which has as many units as `utf8` has bytes; what it takes less
// goes.
void PutText(String& result, std::size_t at, std::string_view utf8) {
    char16_t* out = result.data() + at;
    while (true) {
        std::size_t plain = AsciiPrefix(utf8);
        out = std::transform(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(plain), out,
                             [](char c) { return static_cast<char16_t>(c); });
        utf8.remove_prefix(plain);
        if (utf8.empty()) break;
        out = PutUtf16(out, DecodeUtf8(utf8));
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
}

}  // namespace

bool IsAscii(std::string_view bytes) { return AsciiPrefix(bytes) == bytes.size(); }

std::size_t AsciiPrefix(std::string_view bytes) {
    std::size_t plain = 0;
    while (plain + kWord <= bytes.size() && IsAsciiWord(bytes.data() + plain)) plain += kWord;
    bool lastIsAscii = bytes.size() >= kWord && IsAsciiWord(bytes.data() + bytes.size() - kWord);
    if (lastIsAscii && plain + kWord > bytes.size()) return bytes.size();
    while (plain < bytes.size() && static_cast<unsigned char>(bytes[plain]) < 0x80) ++plain;
    return plain;
}

std::size_t AsciiPrefix(StringView text) {
    constexpr std::size_t kUnits = kWord / sizeof(char16_t);
    std::size_t plain = 0;
    while (plain + kUnits <= text.size() && (WordAt(text.data() + plain) & 0xFF80FF80FF80FF80U) == 0)
        plain += kUnits;
    while (plain < text.size() && text[plain] < 0x80) ++plain;
    return plain;
}

void PutWire(char16_t* out, std::string_view bytes) {
    std::transform(bytes.begin(), bytes.end(), out,
                   [](char byte) { return static_cast<char16_t>(static_cast<unsigned char>(byte)); });
}

String WireFromBytes(std::string_view bytes) {
    String result(bytes.size(), u'\0');
    PutWire(result.data(), bytes);
    return result;
}

std::string BytesFromWire(StringView wire) {
    std::string result(wire.size(), '\0');
    std::transform(wire.begin(), wire.end(), result.begin(),
                   [](char16_t c) { return c > 255 ? '?' : static_cast<char>(c); });
    return result;
}

std::string Utf8FromText(StringView text) {
    std::string result(Utf8Bound(text), '\0');
    char* out = result.data();
    while (true) {
        const StringView plain = text.substr(0, AsciiPrefix(text));
        out =
            std::transform(plain.begin(), plain.end(), out, [](char16_t c) { return static_cast<char>(c); });
        text.remove_prefix(plain.size());
        if (text.empty()) break;
        out = PutUtf8(out, TakeCodePoint(text));
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

String TextFromUtf8(std::string_view utf8) {
    String result(utf8.size(), u'\0');
    PutText(result, 0, utf8);
    return result;
}

void AppendText(String& out, std::string_view utf8) {
    const std::size_t at = out.size();
    out.resize(at + utf8.size());
    PutText(out, at, utf8);
}

bool HasLoneSurrogate(StringView text) {
    if (std::none_of(text.begin(), text.end(), IsSurrogate)) return false;
    while (!text.empty()) {
        bool literal = text.front() == kReplacementCode;
        if (TakeCodePoint(text) == kReplacementCode && !literal) return true;
    }
    return false;
}

}  // namespace quorix
