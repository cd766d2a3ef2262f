/// \class quorix::cXML_Node
/// The object through which an application reads and edits one piece of XML.
///
/// Names are compared exactly, as written. What is missing reads as "", 0 or false and is never an error.
///
/// Ownership: the wrapper shares its document; nodes it gives out are live and keep it alive.
/// Threads: as XmlDocument.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "quorix/base/Collection.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/xml/XmlDocument.h"

namespace quorix {

class QUORIX_API cXML_Node {
public:
    cXML_Node();
    explicit cXML_Node(std::shared_ptr<XmlDocument> document);
    /// What has arrived: all of it, or `node` alone. It becomes a document when something asks for one.
    explicit cXML_Node(ParsedXmlPtr arrived);
    cXML_Node(ParsedXmlPtr arrived, const ParsedNode& node);

    /// Nodes to search instead of the whole document. A tag search never matches the given nodes themselves,
    /// an attribute search begins with them.
    using Nodes = std::vector<XmlNode>;

    /// The name of the root element, whatever declares or precedes it; "" in an empty document.
    String GetNamespace() const;

    /// XPath 1.0 on the document; a prefixed name matches as written. Error 5 for a malformed expression.
    /// The first match, live, or an empty handle.
    XmlNode getNode(StringView xpath) const;
    /// Copies of all matches in document order, each a document of its own; editing them changes nothing
    /// here.
    std::shared_ptr<Collection<std::shared_ptr<cXML_Node>>> getNodes(StringView xpath) const;

    /// The tag search: below the root, level by level of each element before the levels under it. The root
    /// itself is never found.
    bool TagExists(StringView tag) const;
    bool TagExists(StringView tag, const Nodes& nodes) const;
    bool FindTag(StringView tag) const;
    bool FindTag(StringView tag, const Nodes& nodes) const;

    /// The text of all descendants of the first element found.
    String GetTag(StringView tag) const;
    String GetTag(StringView tag, const Nodes& nodes) const;
    /// Rounded half to even; 0 outside -32768 to 32767. Error 13 when the text is no number.
    std::int16_t GetTagInt(StringView tag) const;
    /// Rounded half to even. Error 13 when the text is no number, 6 outside 32 bits.
    std::int32_t GetTagLng(StringView tag) const;
    /// "True" or "False" in any ASCII case, or a number, where 0 is false. Error 13 for anything else.
    bool GetTagYesNo(StringView tag) const;

    /// The attribute search: the attributes of the root, then those of each element in document order.
    String GetAttrib(StringView attribute) const;
    String GetAttrib(StringView attribute, const Nodes& nodes) const;
    bool FindAttrib(StringView attribute) const;
    bool FindAttrib(StringView attribute, const Nodes& nodes) const;
    /// Changes the first attribute found; creates none.
    void setAttrib(StringView attribute, StringView value);
    void setAttrib(StringView attribute, StringView value, const Nodes& nodes);

    /// Sets an attribute of the first element found by the tag search. Error 5 for an invalid name.
    void AddAttrib(StringView attribute, StringView tag, StringView value);
    void AddAttrib(StringView attribute, StringView tag, StringView value, const Nodes& nodes);
    /// Appends a new element with `text` to the root, when that is named `parentTag`, else to the first
    /// element found by the tag search. Error 5 for an invalid name.
    void AddTag(StringView tag, StringView parentTag, StringView text);
    void AddTag(StringView tag, StringView parentTag, StringView text, const Nodes& nodes);
    /// Replaces the content of the first element found.
    void SetTag(StringView tag, StringView text);
    void SetTag(StringView tag, StringView text, const Nodes& nodes);

    /// UTF-8. Error 53 when the file cannot be written.
    void SaveXML_ToFile(StringView fileName) const;
    /// A file that is missing or does not load leaves an empty document.
    void LoadXML_FromFile(StringView fileName);

    /// Text that does not load leaves an empty document.
    String xml() const;
    void xml(StringView text);

    XmlNode Root() const { return Document()->Root(); }
    const std::shared_ptr<XmlDocument>& Document() const;

private:
    Nodes Top() const;

    // See AskRoot.h.
    template <class Read>
    friend auto AskRoot(const cXML_Node& node, Read read);
    ParsedNode ArrivedRoot() const;

    static constexpr std::uint32_t kWhole = UINT32_MAX;

    ParsedXmlPtr arrived_;
    std::uint32_t part_ = kWhole;  // the node in what has arrived
    mutable std::shared_ptr<XmlDocument> document_;
};

}  // namespace quorix
