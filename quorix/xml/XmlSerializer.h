// The one serialized form of a tree, in UTF-8: no declaration added, no indentation, no trailing newline,
// attributes in their order with double quotes, `<a/>` for every empty element.
#pragma once

#include <libxml/tree.h>

#include <string>

#include "quorix/xml/ParsedXml.h"

namespace quorix {

std::string Serialize(const xmlNode* node);
std::string Serialize(const ParsedNode& node);

}  // namespace quorix
