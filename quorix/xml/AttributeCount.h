// Looks for an element with more attributes than we allow, before the parser compares each of them with all
// others.
#pragma once

#include <string_view>

namespace quorix {

bool HasTooManyAttributes(std::string_view xml);

}  // namespace quorix
