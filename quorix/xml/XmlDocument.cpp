#include "quorix/xml/XmlDocument.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/XmlParser.h"
#include "quorix/xml/XmlQuery.h"
#include "quorix/xml/XmlSerializer.h"

namespace quorix {

namespace {

std::filesystem::path PathFrom(StringView path) {
    std::string utf8 = Utf8FromText(path);
    return std::u8string(utf8.begin(), utf8.end());
}

// Nothing when it cannot be read, which is no XML either.
std::string ContentOf(StringView path) {
    std::ifstream file(PathFrom(path), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

// UTF-16 is text already, once its bytes are in order.
std::optional<String> TextFromUtf16(std::string_view bytes) {
    bool little = bytes.starts_with("\xFF\xFE");
    if (!little && !bytes.starts_with("\xFE\xFF")) return {};
    String text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        auto low = static_cast<unsigned char>(bytes[little ? i : i + 1]);
        auto high = static_cast<unsigned char>(bytes[little ? i + 1 : i]);
        text += static_cast<char16_t>(high << 8U | low);
    }
    return text;
}

// `xml` with the encoding that its declaration names, if any, replaced.
std::string DeclaringUtf8(std::string xml) {
    std::size_t end = xml.starts_with("<?xml ") ? xml.find("?>") : 0;
    std::size_t name = std::string_view(xml).substr(0, end).find("encoding");
    std::size_t open = xml.find_first_of("\"'", name);
    if (open >= end) return xml;
    std::size_t close = xml.find(xml[open], open + 1);
    return xml.replace(open + 1, std::min(close, end) - open - 1, "UTF-8");
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

bool XmlDocument::LoadFile(StringView path) {
    std::string bytes = ContentOf(path);
    if (std::optional<String> text = TextFromUtf16(bytes)) return Load(*text);
    return Take(ParseFile(bytes));
}

void XmlDocument::SaveFile(StringView path) const {
    std::ofstream file(PathFrom(path), std::ios::binary);
    file << DeclaringUtf8(Serialize(AsNode(*tree_)));
    file.close();
    if (!file) throw AutomationError(ERR_FileNotFound);
}

XmlNode XmlDocument::Root() const { return XmlNode(FirstElementFrom(tree_->children)); }

void XmlDocument::Root(const XmlNode& element) {
    if (!element.IsElement()) throw AutomationError(ERR_InvalidCall);
    xmlNode* former = FirstElementFrom(tree_->children);
    if (former == element.Raw()) return;
    Unlink(element.Raw());
    Adopt(*tree_, element.Raw());
    if (!former) return LinkLast(AsNode(*tree_), element.Raw());
    xmlReplaceNode(former, element.Raw());
    Discard(former);
}

String XmlDocument::Xml() const { return TextFromUtf8(Serialize(AsNode(*tree_))); }

XmlNode XmlDocument::SelectSingle(StringView xpath) const {
    return XmlNode(AsNode(*tree_)).SelectSingle(xpath);
}
std::vector<XmlNode> XmlDocument::Select(StringView xpath) const {
    return SelectNodes(AsNode(*tree_), xpath);
}

XmlNode XmlDocument::CreateElement(StringView name) {
    XmlNode element(NewElement(*tree_, TreeName(name)));
    Discard(element.Raw());
    return element;
}

void XmlDocument::AppendInstruction(StringView target, StringView data) {
    if (data.find(u"?>") != StringView::npos) throw AutomationError(ERR_InvalidCall);
    LinkLast(AsNode(*tree_), NewInstruction(*tree_, TreeName(target), TreeText(data)));
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
