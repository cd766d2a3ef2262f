#include "quorix/xml/cXML_Writer.h"

#include "quorix/base/AutomationError.h"

namespace quorix {

XmlNode cXML_Writer::addNode(const XmlNode& parent) {
    XmlNode target = parent ? parent : document_->Root();
    return target.AppendChild(current_);
}

void cXML_Writer::setAttrib(StringView name, StringView value) { current_.SetAttribute(name, value); }

XmlNode cXML_Writer::setNode(StringView name, StringView text) {
    current_ = document_->CreateElement(name);
    current_.Text(text);
    return current_;
}

XmlNode cXML_Writer::setRootElement(StringView name, StringView attribute, StringView value) {
    XmlNode root = document_->CreateElement(name);
    if (!attribute.empty() && !value.empty()) root.SetAttribute(attribute, value);
    document_->Root(root);
    return root;
}

void cXML_Writer::createProcessingInstruction(StringView target, StringView data) {
    document_->AppendInstruction(target, data);
}

void cXML_Writer::SaveXML_ToFile(StringView fileName) const { document_->SaveFile(fileName); }
bool cXML_Writer::LoadXML_FromFile(StringView fileName) { return document_->LoadFile(fileName); }

String cXML_Writer::xml() const { return document_->Xml(); }
void cXML_Writer::xml(StringView text) { document_->Load(text); }

}  // namespace quorix
