#include "quorix/xml/cXML_Node.h"
#include "quorix/base/CollectionElements.h"

#include <limits>

#include "quorix/base/AutomationError.h"
#include "quorix/base/Number.h"
#include "quorix/xml/AskRoot.h"
#include "quorix/xml/Finding.h"

namespace quorix {

template class Collection<std::shared_ptr<cXML_Node>>;

namespace {

template <class Look>
XmlNode FirstOf(const cXML_Node::Nodes& nodes, Look look) {
    for (const XmlNode& top : nodes) {
        if (XmlNode hit = look(top)) return hit;
    }
    return {};
}

XmlNode TagIn(const cXML_Node::Nodes& nodes, StringView tag) {
    return FirstOf(nodes, [tag](const XmlNode& top) { return FindTagBelow(top, tag); });
}

XmlNode BearerIn(const cXML_Node::Nodes& nodes, StringView attribute) {
    return FirstOf(nodes, [attribute](const XmlNode& top) { return FindBearer(top, attribute); });
}

}  // namespace

cXML_Node::cXML_Node() : cXML_Node(XmlDocument::Create()) {}
cXML_Node::cXML_Node(std::shared_ptr<XmlDocument> document) : document_(std::move(document)) {}
cXML_Node::cXML_Node(ParsedXmlPtr arrived) : arrived_(std::move(arrived)) {}
cXML_Node::cXML_Node(ParsedXmlPtr arrived, const ParsedNode& node)
    : arrived_(std::move(arrived)), part_(node ? node.Index() : kWhole) {}

const std::shared_ptr<XmlDocument>& cXML_Node::Document() const {
    if (!document_)
        document_ = part_ == kWhole ? XmlDocument::From(*arrived_) : XmlDocument::From(ArrivedRoot());
    return document_;
}

cXML_Node::Nodes cXML_Node::Top() const {
    XmlNode root = Root();
    return root ? Nodes{root} : Nodes{};
}

ParsedNode cXML_Node::ArrivedRoot() const {
    return part_ == kWhole ? arrived_->Root() : ParsedNode(arrived_.get(), part_);
}

String cXML_Node::GetNamespace() const {
    return AskRoot(*this, [](const auto& root) { return root.Name(); });
}

XmlNode cXML_Node::getNode(StringView xpath) const { return Document()->SelectSingle(xpath); }

std::shared_ptr<Collection<std::shared_ptr<cXML_Node>>> cXML_Node::getNodes(StringView xpath) const {
    auto copies = std::make_shared<Collection<std::shared_ptr<cXML_Node>>>();
    for (const XmlNode& node : Document()->Select(xpath)) {
        copies->Add(std::make_shared<cXML_Node>(XmlDocument::CopyOf(node)));
    }
    return copies;
}

bool cXML_Node::TagExists(StringView tag) const {
    return AskRoot(*this, [&](const auto& root) { return bool(FindTagBelow(root, tag)); });
}
bool cXML_Node::TagExists(StringView tag, const Nodes& nodes) const { return bool(TagIn(nodes, tag)); }
bool cXML_Node::FindTag(StringView tag) const { return TagExists(tag); }
bool cXML_Node::FindTag(StringView tag, const Nodes& nodes) const { return TagExists(tag, nodes); }

String cXML_Node::GetTag(StringView tag) const {
    return AskRoot(*this, [&](const auto& root) { return FindTagBelow(root, tag).Text(); });
}
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

String cXML_Node::GetAttrib(StringView attribute) const {
    return AskRoot(*this, [&](const auto& root) { return FindBearer(root, attribute).Attribute(attribute); });
}
String cXML_Node::GetAttrib(StringView attribute, const Nodes& nodes) const {
    return BearerIn(nodes, attribute).Attribute(attribute);
}

bool cXML_Node::FindAttrib(StringView attribute) const {
    return AskRoot(*this, [&](const auto& root) { return bool(FindBearer(root, attribute)); });
}
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

void cXML_Node::SaveXML_ToFile(StringView fileName) const { Document()->SaveFile(fileName); }
void cXML_Node::LoadXML_FromFile(StringView fileName) { Document()->LoadFile(fileName); }

String cXML_Node::xml() const {
    if (document_) return document_->Xml();
    return part_ == kWhole ? arrived_->Xml() : ArrivedRoot().Xml();
}
void cXML_Node::xml(StringView text) { Document()->Load(text); }

}  // namespace quorix
