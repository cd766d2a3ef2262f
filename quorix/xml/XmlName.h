// Names that become tags.
#pragma once

#include <string>

namespace quorix {

// Whether the bytes, UTF-8, are an XML name without a prefix.
bool IsXmlName(const std::string& utf8);

}  // namespace quorix
