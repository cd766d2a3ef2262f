#include "quorix/net/LineBuffer.h"

#include <algorithm>

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

bool IsWireText(StringView text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c <= 0xFF; });
}

}  // namespace

void LineBuffer::Append(std::string_view bytes) {
    DropConsumed();
    bytes_ += bytes;
}

std::optional<String> LineBuffer::TakeLine(StringView separator) {
    if (!IsWireText(separator)) return {};
    if (separator != separator_) UseSeparator(separator);
    std::size_t at = bytes_.find(separatorBytes_, searched_);
    if (at == std::string::npos) {
        std::size_t overlap = std::min(bytes_.size() - start_, separatorBytes_.size() - 1);
        searched_ = bytes_.size() - overlap;
        return {};
    }
    String line = WireFromBytes(std::string_view(bytes_).substr(start_, at - start_));
    start_ = searched_ = at + separatorBytes_.size();
    return line;
}

std::string_view LineBuffer::TakeLeftOver() {
    std::size_t from = std::max(start_, handed_);
    handed_ = bytes_.size();
    return std::string_view(bytes_).substr(from);
}

void LineBuffer::UseSeparator(StringView separator) {
    separator_ = separator;
    separatorBytes_ = BytesFromWire(separator);
    searched_ = start_;
}

void LineBuffer::DropConsumed() {
    bytes_.erase(0, start_);
    searched_ -= start_;
    handed_ = std::max(handed_, start_) - start_;
    start_ = 0;
}

}  // namespace quorix
