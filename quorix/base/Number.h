// Numbers read from text. Two manners: what comes from the wire is read leniently and never fails; what an
// application asks to have converted fails with an AutomationError.
#pragma once

#include <optional>

#include "quorix/base/String.h"

namespace quorix {

// The leading number of `text` (blanks before it allowed, decimal point and exponent understood), if any.
std::optional<double> LeadingNumber(StringView text);

// The leading number rounded half to even; 0 when there is none or it is out of range.
std::int16_t WireInt16(StringView text);
std::int32_t WireInt32(StringView text);

// The whole text as a number, rounded half to even. Error 13 when it is not a number, 6 when out of range.
std::int32_t ToInt32(StringView text);

// `value` as the narrower type. Error 6 when out of range.
std::int16_t ToInt16(std::int64_t value);

// "True" and "False" in any ASCII case, or a number (not 0 is true). Error 13 for anything else.
bool ToBoolean(StringView text);

}  // namespace quorix
