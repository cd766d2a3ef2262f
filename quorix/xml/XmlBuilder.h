// From a tree of either kind to one that can be edited.
#pragma once

#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

// A document of all that stands at the top of `parsed`, or of `node` alone.
XmlTreePtr BuildTree(const ParsedXml& parsed);
XmlTreePtr BuildTree(const ParsedNode& node);
XmlTreePtr BuildTree(const xmlNode* node);

}  // namespace quorix
