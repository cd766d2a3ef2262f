#include "quorix/xml/XmlDocument.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/XmlParser.h"
#include "quorix/xml/XmlQuery.h"
#include "quorix/xml/XmlSerializer.h"

namespace quorix {

namespace {

xmlNode* DocumentElement(const XmlTree& tree) {
    xmlNode* node = tree.children;
    while (node && !IsElementNode(node)) node = node->next;
    return node;
}

}  // namespace

std::shared_ptr<XmlDocument> XmlDocument::Create() { return std::make_shared<XmlDocument>(NewTree()); }

XmlDocument::XmlDocument(XmlTreePtr tree) : tree_(std::move(tree)) {}
XmlDocument::~XmlDocument() = default;

bool XmlDocument::Take(XmlTreePtr tree) {
    bool loaded = tree != nullptr;
    tree_ = loaded ? std::move(tree) : NewTree();
    return loaded;
}

bool XmlDocument::Load(StringView text) {
    return Take(HasLoneSurrogate(text) ? nullptr : ParseText(Utf8FromText(text), false));
}

bool XmlDocument::LoadContent(StringView text) {
    if (HasLoneSurrogate(text)) return Take(nullptr);
    return Take(ParseText("<content>" + Utf8FromText(text) + "</content>", true));
}

XmlNode XmlDocument::Root() const { return XmlNode(DocumentElement(*tree_)); }

String XmlDocument::Xml() const { return TextFromUtf8(Serialize(AsNode(*tree_))); }

XmlNode XmlDocument::SelectSingle(StringView xpath) const {
    return XmlNode(AsNode(*tree_)).SelectSingle(xpath);
}
std::vector<XmlNode> XmlDocument::Select(StringView xpath) const {
    return SelectNodes(AsNode(*tree_), xpath);
}

std::shared_ptr<XmlDocument> XmlDocument::Detach(const XmlNode& node) {
    if (!node) throw AutomationError(ERR_ObjectNotSet);
    if (!CanBeChild(node.Raw())) throw AutomationError(ERR_InvalidCall);
    XmlTreePtr tree = NewTree(TreeOf(node.Raw())->dict);
    Unlink(node.Raw());
    Adopt(*tree, node.Raw());
    LinkLast(AsNode(*tree), node.Raw());
    return std::make_shared<XmlDocument>(std::move(tree));
}

}  // namespace quorix
