// From UTF-8 to a tree.
//
// The tree is built from our own start-element handler, since the parser library's stock tree takes
// namespace declarations out of their place among the attributes and resolves prefixes.
#pragma once

#include <string>

#include "quorix/xml/XmlTree.h"

namespace quorix {

// Null when `utf8` is not well-formed or exceeds a limit. `enclosed`: the document element is an enclosing
// one, whose white-space-only text is never wanted.
XmlTreePtr ParseText(const std::string& utf8, bool enclosed);

// The same for the bytes of a file, in the encoding that they declare.
XmlTreePtr ParseFile(const std::string& bytes);

}  // namespace quorix
