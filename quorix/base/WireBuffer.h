// Bytes that grow piece by piece and become wire text where they are, since a copy of a long text would cost
// twice its size.
#pragma once

#include <memory>
#include <string_view>

#include "quorix/base/String.h"

namespace quorix {

class WireBuffer {
public:
    WireBuffer() = default;
    WireBuffer(WireBuffer&& other) noexcept { *this = std::move(other); }
    WireBuffer& operator=(WireBuffer&& other) noexcept;

    bool IsEmpty() const { return size_ == 0; }
    std::string_view Bytes() const { return {Memory(), size_}; }
    void Append(std::string_view bytes);
    void Clear() { *this = WireBuffer(); }

    // The bytes are no longer there. The text is there until they are assigned or the buffer ends.
    StringView BecomeText();

private:
    char* Memory() const { return reinterpret_cast<char*>(units_.get()); }

    // As many units as there may be bytes, so that the second half is never touched before it is needed.
    std::unique_ptr<char16_t[]> units_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

}  // namespace quorix
