// Bytes that wait to be sent, in order.
#pragma once

#include <string>
#include <string_view>

namespace quorix {

class ByteQueue {
public:
    bool IsEmpty() const { return sent_ == bytes_.size(); }
    std::string_view Front() const { return std::string_view(bytes_).substr(sent_); }
    void Append(std::string_view bytes) { bytes_ += bytes; }
    void Clear() { *this = ByteQueue(); }

    // Forgets the first `count` bytes. What has been sent is dropped when it outgrows the rest, so that each
    // byte is moved a bounded number of times.
    void Pop(std::size_t count) {
        sent_ += count;
        if (IsEmpty()) return Clear();
        if (sent_ < bytes_.size() / 2) return;
        bytes_ = bytes_.substr(sent_);
        sent_ = 0;
    }

private:
    std::string bytes_;
    std::size_t sent_ = 0;
};

}  // namespace quorix
