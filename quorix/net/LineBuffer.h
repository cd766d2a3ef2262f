// Received text on its way to become lines. The searching resumes where it stopped, and nothing is moved
// that has been searched, so the cost is in proportion to the text, however it is cut into blocks.
//
// Handlers may pump messages, and so add text while lines are being taken: all positions live here.
#pragma once

#include <optional>

#include "quorix/base/String.h"

namespace quorix {

class LineBuffer {
public:
    void Append(StringView text);

    // The next complete line, without its separator (which must not be empty).
    std::optional<String> TakeLine(StringView separator);

    // The text behind the last line that was not handed out by an earlier call. It stays pending.
    StringView TakeLeftOver();

    void Clear();

private:
    void DropConsumed();

    String text_;
    String separator_;
    std::size_t start_ = 0;     // of the pending line
    std::size_t searched_ = 0;  // no separator begins before this
    std::size_t handed_ = 0;    // handed out as left-over up to here
};

}  // namespace quorix
