// Finding the records of a reply wherever they stand in it.
#pragma once

#include <vector>

#include "quorix/xml/XmlNode.h"

namespace quorix {

// All elements called `name` below `top`, in document order, except those inside another of them: each record
// holds the text of all that is in it, so records inside records would let a short reply fill the memory.
std::vector<XmlNode> Outermost(const XmlNode& top, StringView name);

}  // namespace quorix
