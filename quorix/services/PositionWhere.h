// Positions in collections, as the Find members give them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace quorix {

// Position from 1 of the first item that `matches`, 0 when there is none.
template <class Items, class Matches>
std::int32_t PositionWhere(const Items& items, Matches matches) {
    auto found = std::find_if(items.begin(), items.end(), matches);
    if (found == items.end()) return 0;
    return static_cast<std::int32_t>(std::distance(items.begin(), found)) + 1;
}

}  // namespace quorix
