/// \class quorix::cXML_Writer
/// Builds an XML document element by element, and saves, loads or reads it as text.
///
/// The usual order: createProcessingInstruction for a declaration if one is wanted, setRootElement, then for
/// each element setNode, any number of setAttrib, and addNode. Values are escaped where they need it.
///
/// Ownership and threads: see XmlNode.h.
#pragma once

#include <memory>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/xml/XmlDocument.h"

namespace quorix {

class QUORIX_API cXML_Writer {
public:
    /// Appends the current element to `parent`, or to the root element when that is empty, and returns it.
    /// Error 91 without a current element or a parent, 5 when the parent stands inside the current element.
    XmlNode addNode(const XmlNode& parent = XmlNode());

    /// Sets an attribute of the current element. Error 91 without one, 5 when `name` is no XML name.
    void setAttrib(StringView name, StringView value);

    /// Makes a new element the current one. It is not in the document before addNode. Error 5 when `name` is
    /// no XML name.
    XmlNode setNode(StringView name, StringView text);

    /// Makes a new element the document element, in place of an earlier one, with an attribute when neither
    /// its name nor its value is empty. Error 5 when a name is no XML name.
    XmlNode setRootElement(StringView name, StringView attribute, StringView value);

    /// Appends an instruction to the document; to stand first it must come before the root element. Error 5
    /// when `target` is no XML name or `data` holds "?>".
    void createProcessingInstruction(StringView target, StringView data);

    /// UTF-8. Error 53 when the file cannot be written.
    void SaveXML_ToFile(StringView fileName) const;

    /// False, and an empty document, when the file is missing or does not load. Otherwise the loaded document
    /// element is the root element.
    bool LoadXML_FromFile(StringView fileName);

    /// Text that does not load leaves an empty document.
    String xml() const;
    void xml(StringView text);

private:
    std::shared_ptr<XmlDocument> document_ = XmlDocument::Create();
    XmlNode current_;
};

}  // namespace quorix
