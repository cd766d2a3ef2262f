#include <algorithm>

#include "quorix/automation/Classes.h"
#include "quorix/automation/Collections.h"

namespace quorix::automation {

std::shared_ptr<DomNodeList> DomNodeList::ChildrenOf(const XmlNode& parent) {
    auto list = std::make_shared<DomNodeList>(std::vector<XmlNode>());
    list->parent_ = parent;
    return list;
}

std::vector<XmlNode> DomNodeList::Nodes() const {
    if (!parent_) return found_;
    std::vector<XmlNode> children;
    for (XmlNode child = parent_.FirstChild(); child; child = child.NextSibling()) children.push_back(child);
    return children;
}

XmlNode DomNodeList::Item(std::int32_t index) const {
    const std::vector<XmlNode> nodes = Nodes();
    if (index < 0 || static_cast<std::size_t>(index) >= nodes.size()) return {};
    return nodes[static_cast<std::size_t>(index)];
}

std::int32_t DomNodeList::Length() const { return static_cast<std::int32_t>(Nodes().size()); }

XmlNode DomNodeList::NamedItem(StringView name) const {
    const std::vector<XmlNode> nodes = Nodes();
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&](const XmlNode& node) { return StringView(node.Name()) == name; });
    return found != nodes.end() ? *found : XmlNode();
}

Variant Custom<XmlNode>::To(const XmlNode& node) {
    if (!node) return ObjectVariant(nullptr);
    return ObjectVariant(Wrap(std::make_shared<XmlNode>(node), TableOf<XmlNode>(), node.Raw()));
}

XmlNode Custom<XmlNode>::From(const VARIANT& value) {
    const auto handle = FromVariant<std::shared_ptr<XmlNode>>(value);
    return handle ? *handle : XmlNode();
}

namespace {

using List = std::shared_ptr<DomNodeList>;

List Selected(std::vector<XmlNode> nodes) { return std::make_shared<DomNodeList>(std::move(nodes)); }

// Absent is another answer than empty.
Variant AttributeOf(XmlNode& node, StringView name) {
    return node.HasAttribute(name) ? StringVariant(node.Attribute(name)) : NullVariant();
}

XmlNode RemoveChildOf(XmlNode& node, const XmlNode& child) {
    node.RemoveChild(child);
    return child;
}

Variant EnumerateNodes(DomNodeList& list) {
    std::vector<Variant> values;
    for (const XmlNode& node : list.Nodes()) values.push_back(ToVariant(node));
    return MakeEnumerator(values);
}

}  // namespace

template <>
const ClassTable& TableOf<XmlNode>() {
    using T = XmlNode;
    static const auto table =
        Class<T>(L"DomNode")
            .Get(L"nodeName", &T::Name)
            .Property(L"text", &T::Text, &T::Text)
            .Get(L"xml", &T::Xml)
            .Get(
                L"attributes", +[](T& node) { return Selected(node.Select(u"@*")); })
            .Get(
                L"childNodes", +[](T& node) { return DomNodeList::ChildrenOf(node); })
            .Get(L"parentNode", &T::Parent)
            .Get(L"firstChild", &T::FirstChild)
            .Get(L"nextSibling", &T::NextSibling)
            .Method(
                L"hasChildNodes", +[](T& node) { return static_cast<bool>(node.FirstChild()); })
            .Method(L"getAttribute", &AttributeOf)
            .Method(L"setAttribute", &T::SetAttribute)
            .Method(L"removeAttribute", &T::RemoveAttribute)
            .Method(L"selectSingleNode", &T::SelectSingle)
            .Method(
                L"selectNodes", +[](T& node, StringView path) { return Selected(node.Select(path)); })
            .Method(L"appendChild", &T::AppendChild)
            .Method(L"removeChild", &RemoveChildOf);
    return table;
}

template <>
const ClassTable& TableOf<DomNodeList>() {
    using T = DomNodeList;
    static const auto table = Class<T>(L"DomNodeList")
                                  .Get(
                                      L"Item", +[](T& list, std::int32_t index) { return list.Item(index); })
                                  .Get(L"length", &T::Length)
                                  .Method(L"getNamedItem", &T::NamedItem)
                                  .Get(L"_NewEnum", &EnumerateNodes);
    return table;
}

}  // namespace quorix::automation
