// The one serialized form of a tree: no declaration added, no indentation, no trailing newline,
// attributes in their order with double quotes, `<a/>` for every empty element.
#pragma once

#include <libxml/tree.h>

#include "quorix/base/String.h"
#include "quorix/xml/ParsedXml.h"

namespace quorix {

String Serialize(const xmlNode* node);
String Serialize(const ParsedNode& node);

}  // namespace quorix
