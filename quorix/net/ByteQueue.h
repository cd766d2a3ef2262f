// Bytes that wait to be sent, in order. They are kept in blocks, so that nothing is moved while they wait and
// memory is given back as they go.
#pragma once

#include <deque>
#include <string>
#include <string_view>

namespace quorix {

class ByteQueue {
public:
    bool IsEmpty() const { return blocks_.empty(); }

    // The first bytes, some of them if not all.
    std::string_view Front() const { return std::string_view(blocks_.front()).substr(sent_); }

    // Forgets the first `count` bytes of Front.
    void Pop(std::size_t count) {
        sent_ += count;
        if (sent_ < blocks_.front().size()) return;
        blocks_.pop_front();
        sent_ = 0;
    }

    void Append(std::string_view bytes) {
        while (!bytes.empty()) bytes.remove_prefix(Fill(bytes));
    }

    // Asks for no memory, which making an empty one would.
    void Clear() {
        blocks_.clear();
        sent_ = 0;
    }

private:
    static constexpr std::size_t kBlock = 65536;

    std::size_t Fill(std::string_view bytes) {
        if (blocks_.empty() || blocks_.back().size() == kBlock) blocks_.emplace_back();
        std::string& last = blocks_.back();
        std::string_view fitting = bytes.substr(0, kBlock - last.size());
        last += fitting;
        return fitting.size();
    }

    std::deque<std::string> blocks_;  // none of them empty, each but the last full
    std::size_t sent_ = 0;            // of the first one
};

}  // namespace quorix
