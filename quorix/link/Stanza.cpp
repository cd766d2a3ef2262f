#include "quorix/link/Stanza.h"

#include <utility>

#include "quorix/base/Number.h"

namespace quorix {

Stanza::Stanza(NodePtr stanzaNode)
    : node(std::move(stanzaNode)),
      root(node->Root()),
      type(root.Attribute(u"type")),
      from(root.Attribute(u"from")),
      id(root.Attribute(u"id")) {}

String Stanza::ChildText(StringView name) const { return root.Child(name).Text(); }

std::int16_t Stanza::ErrorCode() const { return WireInt16(root.Child(u"error").Attribute(u"code")); }

}  // namespace quorix
