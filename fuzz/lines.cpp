// Lines cut from blocks of any size are those of the whole text.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/net/LineBuffer.h"

namespace {

using Lines = std::vector<std::string>;

// The rest behind the last separator is the last line.
Lines Split(std::string_view text, std::string_view separator) {
    Lines lines;
    for (std::size_t at = text.find(separator); at != text.npos; at = text.find(separator)) {
        lines.emplace_back(text.substr(0, at));
        text.remove_prefix(at + separator.size());
    }
    lines.emplace_back(text);
    return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    FuzzedDataProvider input(data, size);
    std::string separator = input.ConsumeRandomLengthString(4);
    if (separator.empty()) return 0;
    LineBuffer buffer;
    std::string whole;
    Lines lines;
    std::string rest;
    while (input.remaining_bytes() > 0) {
        std::string block = input.ConsumeRandomLengthString();
        whole += block;
        buffer.Append(block);
        while (auto line = buffer.TakeLine(WireFromBytes(separator))) {
            lines.push_back(BytesFromWire(*line));
            rest.clear();
        }
        rest += buffer.TakeLeftOver();
    }
    lines.push_back(rest);
    if (lines != Split(whole, separator)) std::abort();
    return 0;
}
