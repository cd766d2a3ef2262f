// Received bytes on their way to become lines. The searching resumes where it stopped, and nothing is moved
// that has been searched, so the cost is in proportion to the text, however it is cut into blocks.
//
// Handlers may pump messages, and so add bytes while lines are being taken: all positions live here.
#pragma once

#include <optional>

#include "quorix/base/String.h"

namespace quorix {

class LineBuffer {
public:
    void Append(std::string_view bytes);

    // The next complete line (wire text), without its separator (which must not be empty).
    std::optional<String> TakeLine(StringView separator);

    // The bytes behind the last line that were not handed out by an earlier call. They stay pending.
    std::string_view TakeLeftOver();

    void Clear() { *this = LineBuffer(); }

private:
    void UseSeparator(StringView separator);
    void DropConsumed();

    std::string bytes_;
    String separator_;
    std::string separatorBytes_;
    std::size_t start_ = 0;     // of the pending line
    std::size_t searched_ = 0;  // no separator begins before this
    std::size_t handed_ = 0;    // handed out as left-over up to here
};

}  // namespace quorix
