#include <algorithm>

#include "quorix/scripting/Classes.h"
#include "quorix/scripting/Collections.h"

namespace quorix::scripting {

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

namespace {

using List = std::shared_ptr<DomNodeList>;

List Selected(std::vector<XmlNode> nodes) { return std::make_shared<DomNodeList>(std::move(nodes)); }

// Absent is another answer than empty.
std::optional<String> AttributeOf(XmlNode& node, StringView name) {
    return node.HasAttribute(name) ? std::optional(node.Attribute(name)) : std::nullopt;
}

XmlNode RemoveChildOf(XmlNode& node, const XmlNode& child) {
    node.RemoveChild(child);
    return child;
}

Values ElementsOfNodes(DomNodeList& list) {
    Values elements;
    for (const XmlNode& node : list.Nodes()) elements.push_back(ToValue(node));
    return elements;
}

}  // namespace

template <>
const ClassTable& TableOf<XmlNode>() {
    using T = XmlNode;
    static const auto table =
        Class<T>("DomNode")
            .Get("nodeName", &T::Name)
            .Property("text", &T::Text, &T::Text)
            .Get("xml", &T::Xml)
            .Get(
                "attributes", +[](T& node) { return Selected(node.Select(u"@*")); })
            .Get(
                "childNodes", +[](T& node) { return DomNodeList::ChildrenOf(node); })
            .Get("parentNode", &T::Parent)
            .Get("firstChild", &T::FirstChild)
            .Get("nextSibling", &T::NextSibling)
            .Method(
                "hasChildNodes", +[](T& node) { return static_cast<bool>(node.FirstChild()); })
            .Method("getAttribute", &AttributeOf)
            .Method("setAttribute", &T::SetAttribute)
            .Method("removeAttribute", &T::RemoveAttribute)
            .Method("selectSingleNode", &T::SelectSingle)
            .Method(
                "selectNodes", +[](T& node, StringView path) { return Selected(node.Select(path)); })
            .Method("appendChild", &T::AppendChild)
            .Method("removeChild", &RemoveChildOf);
    return table;
}

template <>
const ClassTable& TableOf<DomNodeList>() {
    using T = DomNodeList;
    static const auto table = Class<T>("DomNodeList")
                                  .Get(
                                      "Item", +[](T& list, std::int32_t index) { return list.Item(index); })
                                  .Get("length", &T::Length)
                                  .Method("getNamedItem", &T::NamedItem)
                                  .Get("_NewEnum", &ElementsOfNodes);
    return table;
}

}  // namespace quorix::scripting
