#include "quorix/base/WireBuffer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "quorix/base/WireText.h"

namespace quorix {

WireBuffer& WireBuffer::operator=(WireBuffer&& other) noexcept {
    units_ = std::move(other.units_);
    capacity_ = std::exchange(other.capacity_, 0);
    size_ = std::exchange(other.size_, 0);
    return *this;
}

void WireBuffer::Append(std::string_view bytes) {
    const std::size_t size = size_ + bytes.size();
    if (size > capacity_) {
        const std::size_t capacity = std::max(size, 2 * capacity_);
        std::unique_ptr<char16_t[]> larger(new char16_t[capacity]);
        Bytes().copy(reinterpret_cast<char*>(larger.get()), size_);
        units_ = std::move(larger);
        capacity_ = capacity;
    }
    bytes.copy(Memory() + size_, bytes.size());
    size_ = size;
}

// From the end, where nothing is overwritten that is still to be read but what is read at once.
StringView WireBuffer::BecomeText() {
    const std::size_t length = std::exchange(size_, 0);
    std::array<char, 256> piece;
    for (std::size_t begin = length, size = 0; begin > 0;) {
        size = std::min(begin, piece.size());
        begin -= size;
        std::copy_n(Memory() + begin, size, piece.begin());
        PutWire(units_.get() + begin, {piece.data(), size});
    }
    return {units_.get(), length};
}

}  // namespace quorix
