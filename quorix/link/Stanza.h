// One stanza on its way through the dispatcher: its tree, and what every branch asks of it.
#pragma once

#include <memory>

#include "quorix/base/String.h"
#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

using NodePtr = std::shared_ptr<cXML_Node>;

// `type`, From and Id are the root element's own attributes, "" when missing.
struct Stanza {
    // Of `element`, which `whole` holds; without one, of all of it.
    explicit Stanza(ParsedXmlPtr whole, const ParsedNode& element = {});

    // The stanza as the events carry it: the same node in each of them, which a handler may change. What is
    // read here stays as it arrived.
    const NodePtr& Node() const;

    // `element`, which is part of this stanza, as a node of its own.
    NodePtr NodeOf(const ParsedNode& element) const;

    String From() const { return root.Attribute(u"from"); }
    String Id() const { return root.Attribute(u"id"); }

    // The first child element, or an empty node.
    ParsedNode Query() const { return root.FirstElement(); }

    // The text of the direct child `name`, "" when there is none.
    String ChildText(StringView name) const;

    bool IsGet() const { return type == u"get"; }
    bool IsSet() const { return type == u"set"; }
    bool IsResult() const { return type == u"result"; }
    bool IsError() const { return type == u"error"; }

    ParsedXmlPtr tree;
    ParsedNode root;
    String type;

private:
    ParsedNode part_;
    mutable NodePtr node_;
};

}  // namespace quorix
