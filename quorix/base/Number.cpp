#include "quorix/base/Number.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"

namespace quorix {

namespace {

struct Scan {
    double value;
    bool whole;  // nothing but blanks follows
};

std::optional<Scan> ScanNumber(StringView text) {
    std::string digits = BytesFromWire(Trim(text));
    const char* first = digits.c_str();
    const char* last = first + digits.size();
    if (*first == '+' && first[1] != '-') ++first;
    double value = 0;
    auto [end, error] = std::from_chars(first, last, value);
    bool spelledOut = !std::isfinite(value);  // "inf" and "nan" are words, not numbers
    if (error == std::errc::invalid_argument || spelledOut) return {};
    if (error == std::errc::result_out_of_range) value = std::numeric_limits<double>::infinity();
    return Scan{value, end == last};
}

template <class Int>
bool Fits(double value) {
    return value >= std::numeric_limits<Int>::min() && value <= std::numeric_limits<Int>::max();
}

template <class Int>
Int WireInt(StringView text) {
    double value = std::nearbyint(LeadingNumber(text).value_or(0));
    return Fits<Int>(value) ? static_cast<Int>(value) : Int{0};
}

double WholeNumber(StringView text) {
    std::optional<Scan> scan = ScanNumber(text);
    if (!scan || !scan->whole) throw AutomationError(ERR_TypeMismatch);
    return scan->value;
}

}  // namespace

std::optional<double> LeadingNumber(StringView text) {
    std::optional<Scan> scan = ScanNumber(text);
    return scan ? std::optional(scan->value) : std::nullopt;
}

std::int16_t WireInt16(StringView text) { return WireInt<std::int16_t>(text); }
std::int32_t WireInt32(StringView text) { return WireInt<std::int32_t>(text); }

std::int32_t ToInt32(StringView text) {
    double value = std::nearbyint(WholeNumber(text));
    if (!Fits<std::int32_t>(value)) throw AutomationError(ERR_Overflow);
    return static_cast<std::int32_t>(value);
}

std::int16_t ToInt16(std::int64_t value) {
    if (!Fits<std::int16_t>(static_cast<double>(value))) throw AutomationError(ERR_Overflow);
    return static_cast<std::int16_t>(value);
}

bool ToBoolean(StringView text) {
    if (EqualsIgnoringCase(Trim(text), u"True")) return true;
    if (EqualsIgnoringCase(Trim(text), u"False")) return false;
    return WholeNumber(text) != 0;
}

}  // namespace quorix
