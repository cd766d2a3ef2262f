// XPath over a tree without namespaces.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quorix/xml/XmlNode.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

// The nodes that `xpath` selects from `context`, in document order. Error 5 for an expression that is
// malformed or does not select nodes.
std::vector<XmlNode> SelectNodes(xmlNode* context, StringView xpath);

// `xpath` with every prefixed name test in a form that compares the name as written: "p:n" becomes
// "*[name()='p:n']".
std::string WithNamesAsWritten(std::string_view xpath);

}  // namespace quorix
