// The codec and the numbers, over any text.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "quorix/base/AutomationError.h"
#include "quorix/base/Number.h"
#include "quorix/base/WireText.h"
#include "quorix/base/XmlText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix {
namespace {

void Expect(bool holds) {
    if (!holds) std::abort();
}

void CheckCodec(StringView text) {
    String wire = EncodeUTF8(text, true);
    bool encodable = text.find_first_of(u'&') == StringView::npos && wire.size() <= kMaxCodecUnits;
    for (char16_t unit : text) encodable = encodable && unit < 0x8000 && !IsForbidden(unit);
    if (encodable) Expect(DecodeUTF8(wire, true) == text);
    Expect(DecodeUTF8(text, true).size() <= text.size());
    Expect(TextFromUtf8(Utf8FromText(text)).size() == text.size());
}

// What an application has converted is either refused or what the wire's manner reads too.
void CheckNumbers(StringView text) {
    double leading = LeadingNumber(text).value_or(0);
    double wire = WireInt32(text);
    Expect(std::abs(wire - leading) <= 0.5 || (wire == 0 && std::abs(leading) > INT32_MAX));
    Expect(WireInt16(text) == 0 || WireInt16(text) == WireInt32(text));
    try {
        Expect(std::abs(ToInt32(text) - leading) <= 0.5);
        ToBoolean(text);
    } catch (const AutomationError&) {
    }
}

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quorix::String text(size / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), data, text.size() * 2);
    quorix::CheckCodec(text);
    quorix::CheckNumbers(text);
    quorix::CheckNumbers(quorix::WireFromBytes({reinterpret_cast<const char*>(data), size}));
    return 0;
}
