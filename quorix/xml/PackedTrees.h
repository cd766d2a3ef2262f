// Trees that have to wait, first in, first out, in less than half the memory that reading them takes.
#pragma once

#include <deque>
#include <string>

#include "quorix/xml/ParsedXml.h"

namespace quorix {

class PackedTrees {
public:
    bool IsEmpty() const { return blocks_.empty(); }
    void Push(const ParsedXml& tree);
    ParsedXmlPtr Pop();  // of what is not empty
    void Clear();

private:
    struct Format;

    std::deque<std::string> blocks_;
    std::size_t read_ = 0;  // of the first block
};

}  // namespace quorix
