#include "quorix/net/LineBuffer.h"

#include <algorithm>

namespace quorix {

void LineBuffer::Append(StringView text) {
    DropConsumed();
    text_ += text;
}

std::optional<String> LineBuffer::TakeLine(StringView separator) {
    if (separator != separator_) {
        separator_ = separator;
        searched_ = start_;
    }
    std::size_t at = text_.find(separator, searched_);
    if (at == String::npos) {
        std::size_t overlap = std::min(text_.size() - start_, separator.size() - 1);
        searched_ = text_.size() - overlap;
        return {};
    }
    String line = text_.substr(start_, at - start_);
    start_ = searched_ = at + separator.size();
    return line;
}

StringView LineBuffer::TakeLeftOver() {
    std::size_t from = std::max(start_, handed_);
    handed_ = text_.size();
    return StringView(text_).substr(from);
}

void LineBuffer::Clear() { *this = LineBuffer(); }

void LineBuffer::DropConsumed() {
    text_.erase(0, start_);
    searched_ -= start_;
    handed_ = std::max(handed_, start_) - start_;
    start_ = 0;
}

}  // namespace quorix
