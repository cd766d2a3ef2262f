#include "quorix/xml/cXML_Node.h"

#include <limits>

#include "quorix/base/AutomationError.h"
#include "quorix/base/Number.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

namespace {

// The first hit of `look` on the subtrees of `nodes`, in document order.
template <class Look>
XmlNode Search(const cXML_Node::Nodes& nodes, Look look) {
    for (const XmlNode& top : nodes) {
        for (xmlNode* node = top.Raw(); node; node = Following(node, top.Raw())) {
            if (xmlNode* hit = look(node)) return XmlNode(hit);
        }
    }
    return {};
}

XmlNode TagIn(const cXML_Node::Nodes& nodes, StringView tag) {
    return Search(nodes, [tag](const xmlNode* node) { return FindChild(node, tag); });
}

// The element that bears the attribute.
XmlNode BearerIn(const cXML_Node::Nodes& nodes, StringView attribute) {
    return Search(nodes,
                  [attribute](xmlNode* node) { return FindAttribute(node, attribute) ? node : nullptr; });
}

}  // namespace

cXML_Node::cXML_Node() : cXML_Node(XmlDocument::Create()) {}
cXML_Node::cXML_Node(std::shared_ptr<XmlDocument> document) : document_(std::move(document)) {}

cXML_Node::Nodes cXML_Node::Top() const {
    XmlNode root = Root();
    return root ? Nodes{root} : Nodes{};
}

String cXML_Node::GetNamespace() const { return Root().Name(); }

XmlNode cXML_Node::getNode(StringView xpath) const { return document_->SelectSingle(xpath); }

std::shared_ptr<Collection<std::shared_ptr<cXML_Node>>> cXML_Node::getNodes(StringView xpath) const {
    auto copies = std::make_shared<Collection<std::shared_ptr<cXML_Node>>>();
    for (const XmlNode& node : document_->Select(xpath)) {
        copies->Add(std::make_shared<cXML_Node>());
        copies->Item(copies->Count())->xml(node.Xml());
    }
    return copies;
}

bool cXML_Node::TagExists(StringView tag) const { return TagExists(tag, Top()); }
bool cXML_Node::TagExists(StringView tag, const Nodes& nodes) const { return bool(TagIn(nodes, tag)); }
bool cXML_Node::FindTag(StringView tag) const { return TagExists(tag); }
bool cXML_Node::FindTag(StringView tag, const Nodes& nodes) const { return TagExists(tag, nodes); }

String cXML_Node::GetTag(StringView tag) const { return GetTag(tag, Top()); }
String cXML_Node::GetTag(StringView tag, const Nodes& nodes) const { return TagIn(nodes, tag).Text(); }

std::int16_t cXML_Node::GetTagInt(StringView tag) const {
    using Limits = std::numeric_limits<std::int16_t>;
    String text = GetTag(tag);
    if (text.empty()) return 0;
    double value = LeadingNumber(text).value_or(0);
    if (value < Limits::min() || value >= Limits::max() + 1.0) return 0;
    std::int32_t rounded = ToInt32(text);
    return rounded > Limits::max() ? std::int16_t{0} : static_cast<std::int16_t>(rounded);
}

std::int32_t cXML_Node::GetTagLng(StringView tag) const {
    String text = GetTag(tag);
    return text.empty() ? 0 : ToInt32(text);
}

bool cXML_Node::GetTagYesNo(StringView tag) const {
    String text = GetTag(tag);
    return !text.empty() && ToBoolean(text);
}

String cXML_Node::GetAttrib(StringView attribute) const { return GetAttrib(attribute, Top()); }
String cXML_Node::GetAttrib(StringView attribute, const Nodes& nodes) const {
    return BearerIn(nodes, attribute).Attribute(attribute);
}

bool cXML_Node::FindAttrib(StringView attribute) const { return FindAttrib(attribute, Top()); }
bool cXML_Node::FindAttrib(StringView attribute, const Nodes& nodes) const {
    return bool(BearerIn(nodes, attribute));
}

void cXML_Node::setAttrib(StringView attribute, StringView value) { setAttrib(attribute, value, Top()); }
void cXML_Node::setAttrib(StringView attribute, StringView value, const Nodes& nodes) {
    if (XmlNode bearer = BearerIn(nodes, attribute)) bearer.SetAttribute(attribute, value);
}

void cXML_Node::AddAttrib(StringView attribute, StringView tag, StringView value) {
    AddAttrib(attribute, tag, value, Top());
}
void cXML_Node::AddAttrib(StringView attribute, StringView tag, StringView value, const Nodes& nodes) {
    if (XmlNode found = TagIn(nodes, tag)) found.SetAttribute(attribute, value);
}

void cXML_Node::AddTag(StringView tag, StringView parentTag, StringView text) {
    XmlNode root = Root();
    XmlNode parent = root.Is(parentTag) ? root : TagIn(Top(), parentTag);
    if (parent) parent.AppendElement(tag).Text(text);
}
void cXML_Node::AddTag(StringView tag, StringView parentTag, StringView text, const Nodes& nodes) {
    if (XmlNode parent = TagIn(nodes, parentTag)) parent.AppendElement(tag).Text(text);
}

void cXML_Node::SetTag(StringView tag, StringView text) { SetTag(tag, text, Top()); }
void cXML_Node::SetTag(StringView tag, StringView text, const Nodes& nodes) {
    if (XmlNode found = TagIn(nodes, tag)) found.Text(text);
}

void cXML_Node::SaveXML_ToFile(StringView fileName) const { document_->SaveFile(fileName); }
void cXML_Node::LoadXML_FromFile(StringView fileName) { document_->LoadFile(fileName); }

String cXML_Node::xml() const { return document_->Xml(); }
void cXML_Node::xml(StringView text) { document_->Load(text); }

}  // namespace quorix
