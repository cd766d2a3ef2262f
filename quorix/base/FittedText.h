/// \class quorix::FittedText
/// A text that is kept by the thousands: a pointer, and one block of exactly its size.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>

#include "quorix/base/String.h"

namespace quorix {

class FittedText {
public:
    FittedText() = default;
    /// Of up to 4294967295 units; std::length_error beyond.
    explicit FittedText(StringView text) {
        if (text.empty()) return;
        if (text.size() > UINT32_MAX) throw std::length_error("FittedText");
        block_.reset(new char16_t[kHead + text.size()]);
        block_[0] = static_cast<char16_t>(text.size());
        block_[1] = static_cast<char16_t>(text.size() >> 16U);
        std::copy(text.begin(), text.end(), block_.get() + kHead);
    }

    StringView View() const {
        if (!block_) return {};
        return {block_.get() + kHead, block_[0] | static_cast<std::size_t>(block_[1]) << 16U};
    }
    bool operator==(const FittedText& other) const { return View() == other.View(); }

private:
    static constexpr std::size_t kHead = 2;  // where the size stands

    std::unique_ptr<char16_t[]> block_;
};

}  // namespace quorix
