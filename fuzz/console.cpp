// What is typed into the console, and what it shows of a stranger's text.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "apps/console/Clean.h"
#include "apps/console/Parameters.h"
#include "apps/console/Wrap.h"
#include "quorix/base/Mask.h"
#include "quorix/base/WireText.h"

namespace quorix::console {
namespace {

constexpr std::string_view kUsages[] = {
    "JID [TEXT]", "[JID] [WORD]",   "JIDS MARKUP", "ROOM [NICK]", "JID VALUES",
    "CONTACTS",   "JID URL [TEXT]", "[TEXT]",      "XML",         ""};

void Expect(bool holds) {
    if (!holds) std::abort();
}

void Check(std::string_view usage, StringView line) {
    const ParsedLine parsed = ParseLine(usage, line);
    Expect(!parsed.complaint.empty() || parsed.values.size() == ParametersOf(usage).size());
    for (const auto& [name, value] : ParseValues(line)) Expect(!name.empty());
    for (const String& part : Parts(line, u';')) Expect(!part.empty());
}

// Nothing of what is shown commands the terminal.
void CheckShown(const std::string& utf8) {
    for (Lines lines : {Lines::one, Lines::many}) {
        const std::string clean = Clean(utf8, lines);
        for (unsigned char c : clean) Expect(c >= ' ' ? c != 0x7F : c == '\n' && lines == Lines::many);
        Expect(Width(Cut(clean, 20)) <= 20 || lines == Lines::many);
        Wrap(clean, 20, 4);
    }
}

}  // namespace
}  // namespace quorix::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    using namespace quorix::console;
    FuzzedDataProvider input(data, size);
    const std::string_view usage = input.PickValueInArray(kUsages);
    const std::string typed = input.ConsumeRemainingBytesAsString();
    Check(usage, TextFromUtf8(typed));
    CheckShown(typed);
    MaskSecrets(TextFromUtf8(typed));
    return 0;
}
