/// \class quorix::XmlDocument
/// An XML document: parsed from text or a file, or built node by node.
///
/// Loading is strict and has no side effects: what is not well-formed, holds a document type declaration, or
/// exceeds a bound of XmlLimits.h leaves the document empty. White space between elements is dropped unless
/// there is other text among them; in a leaf it stays. A declaration is kept and written back first.
///
/// Ownership and threads: see XmlNode.h.
#pragma once

#include <memory>
#include <vector>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/xml/XmlNode.h"

namespace quorix {

class ParsedNode;
class ParsedXml;
using ParsedXmlPtr = std::shared_ptr<const ParsedXml>;

struct XmlTree;
struct QUORIX_API XmlTreeRelease {
    void operator()(XmlTree* tree) const;
};
using XmlTreePtr = std::unique_ptr<XmlTree, XmlTreeRelease>;

class QUORIX_API XmlDocument {
public:
    static std::shared_ptr<XmlDocument> Create();

    /// A document of its own with all of `parsed`, or with `node` and what is below it.
    static std::shared_ptr<XmlDocument> From(const ParsedXml& parsed);
    static std::shared_ptr<XmlDocument> From(const ParsedNode& node);
    static std::shared_ptr<XmlDocument> CopyOf(const XmlNode& node);

    /// Replaces the tree; handles into the former one stay valid. False when the document is empty now.
    /// An encoding declared in `text` has no meaning, since characters are characters already.
    bool Load(StringView text);

    /// The bytes are UTF-8, or what the file's byte order mark or declaration says: UTF-16 and ISO-8859-1 to
    /// -16 everywhere, others where libxml2 has them. False when there is no such file.
    bool LoadFile(StringView path);

    /// Writes UTF-8, and says so in a declaration that names an encoding. Error 53 when the file cannot be
    /// written.
    void SaveFile(StringView path) const;

    /// The document element; empty in an empty document.
    XmlNode Root() const;
    /// Makes `element` the document element in place of the present one. Error 5 when it is no element.
    void Root(const XmlNode& element);

    String Xml() const;

    /// XPath on the document; see XmlNode.
    XmlNode SelectSingle(StringView xpath) const;
    std::vector<XmlNode> Select(StringView xpath) const;

    /// An element outside the tree. Error 5 when `name` is no XML name.
    XmlNode CreateElement(StringView name);

    /// Appends a processing instruction to the document. Error 5 when `target` is no XML name or `data` holds
    /// "?>", the end of an instruction.
    void AppendInstruction(StringView target, StringView data);

    explicit XmlDocument(XmlTreePtr tree);
    ~XmlDocument();

private:
    bool Take(const ParsedXmlPtr& parsed);

    XmlTreePtr tree_;
};

}  // namespace quorix
