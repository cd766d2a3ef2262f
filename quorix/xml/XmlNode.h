/// \class quorix::XmlNode
/// A handle on one node of an XML tree.
///
/// Nodes and documents are live: what changes through one handle is seen through all. A handle is cheap to
/// copy, may be empty, and keeps its node alive together with the tree around it, also when the node has been
/// removed, moved to another document, or when its document has loaded something else.
///
/// Names and values are text. There is no namespace processing: a name is what stands in the source, prefix
/// included, `xmlns` is an attribute like any other, and comparisons are exact.
///
/// Ownership: a node belongs to its tree, which lives as long as its document or any handle into it.
/// Threads: a document and all its nodes belong to the thread that created the document.
#pragma once

#include <utility>
#include <vector>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

struct _xmlNode;  // NOLINT(bugprone-reserved-identifier): the parser library's own name

namespace quorix {

class QUORIX_API XmlNode {
public:
    XmlNode() = default;
    XmlNode(const XmlNode& other);
    XmlNode(XmlNode&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    XmlNode& operator=(XmlNode other) noexcept;
    ~XmlNode();

    explicit operator bool() const { return node_ != nullptr; }

    /// The same node, not merely an equal one.
    bool operator==(const XmlNode& other) const { return node_ == other.node_; }

    // Every reading member of an empty handle answers "", false or an empty handle, so that a path of
    // children can be followed without a test at each step. Every changing member of an empty handle, or of
    // one that is not an element, raises error 91.

    bool IsElement() const;
    bool IsText() const;  ///< character data, in a CDATA section or not

    /// As written for elements, attributes and instructions; else "#text", "#cdata-section", "#comment" or
    /// "#document".
    String Name() const;
    bool Is(StringView name) const;  ///< an element of this name

    /// The text of all descendants in one; the value of an attribute; the content of other nodes.
    String Text() const;
    bool HasText() const { return !Text().empty(); }
    /// Drops the children and puts `value` in their place.
    void Text(StringView value);

    /// The serialized form: no declaration, no indentation, attributes in source order.
    String Xml() const;

    String Attribute(StringView name) const;  // "" when absent
    bool HasAttribute(StringView name) const;
    bool AttributeIs(StringView name, StringView value) const;  ///< present and equal
    std::vector<std::pair<String, String>> Attributes() const;  ///< names and values in source order
    /// Error 5 when `name` is no XML name. A new attribute comes last.
    void SetAttribute(StringView name, StringView value);
    void RemoveAttribute(StringView name);

    XmlNode Parent() const;  ///< the parent element
    XmlNode FirstChild() const;
    XmlNode NextSibling() const;
    XmlNode FirstElement() const;
    XmlNode NextElement() const;
    XmlNode Child(StringView name) const;         ///< the first child element of this name
    XmlNode Following(const XmlNode& top) const;  ///< the next node in document order below `top`

    /// XPath 1.0, relative to this node; an absolute path starts at its document. A prefixed name matches the
    /// name as written. Results in document order. Error 5 when `xpath` is malformed or selects no nodes by
    /// its nature (a number, say).
    XmlNode SelectSingle(StringView xpath) const;
    std::vector<XmlNode> Select(StringView xpath) const;

    /// A new last child. Error 5 when `name` is no XML name.
    XmlNode AppendElement(StringView name);
    /// Moves `child` from where it is, in whatever document, to the end of this element. Error 5 when it is
    /// this element, contains it, or cannot be a child.
    XmlNode AppendChild(const XmlNode& child);
    /// Error 5 when `child` is no child of this element.
    void RemoveChild(const XmlNode& child);

    /// For this room only.
    explicit XmlNode(_xmlNode* node);
    _xmlNode* Raw() const { return node_; }

private:
    _xmlNode* node_ = nullptr;
};

}  // namespace quorix
