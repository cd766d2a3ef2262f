#include "quorix/xml/XmlDocument.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/QuietParser.h"
#include "quorix/xml/XmlBuilder.h"
#include "quorix/xml/XmlEncoding.h"
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
    std::string content;
    std::array<char, 4096> block;
    do {
        file.read(block.data(), block.size());
        content.append(block.data(), static_cast<std::size_t>(file.gcount()));
    } while (file);
    return content;
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

std::shared_ptr<XmlDocument> XmlDocument::From(const ParsedNode& node) {
    return std::make_shared<XmlDocument>(BuildTree(node));
}

std::shared_ptr<XmlDocument> XmlDocument::From(const ParsedXml& parsed) {
    return std::make_shared<XmlDocument>(BuildTree(parsed));
}

// A node that cannot stand in a document of its own, an attribute say, leaves the copy empty.
std::shared_ptr<XmlDocument> XmlDocument::CopyOf(const XmlNode& node) {
    const xmlNode* source = node.IsElement() ? node.Raw() : FirstElementFrom(ChildrenOf(node.Raw()));
    return source ? std::make_shared<XmlDocument>(BuildTree(source)) : Create();
}

XmlDocument::XmlDocument(XmlTreePtr tree) : tree_(std::move(tree)) {}
XmlDocument::~XmlDocument() = default;

bool XmlDocument::Take(const ParsedXmlPtr& parsed) {
    tree_ = parsed ? BuildTree(*parsed) : NewTree();
    return parsed != nullptr;
}

bool XmlDocument::Load(StringView text) { return Take(ParsedXml::FromText(text)); }

bool XmlDocument::LoadFile(StringView path) {
    std::optional<std::string> utf8 = Utf8FromFile(ContentOf(path));
    return Take(utf8 ? ParsedXml::FromUtf8(*utf8) : nullptr);
}

void XmlDocument::SaveFile(StringView path) const {
    std::string xml = DeclaringUtf8(Utf8FromText(Xml()));
    std::ofstream file(PathFrom(path), std::ios::binary);
    file << xml;
    file.close();
    if (!file) throw AutomationError(ERR_FileNotFound);
}

XmlNode XmlDocument::Root() const { return XmlNode(FirstElementFrom(tree_->children)); }

void XmlDocument::Root(const XmlNode& element) {
    if (!element.IsElement()) throw AutomationError(ERR_InvalidCall);
    xmlNode* former = FirstElementFrom(tree_->children);
    if (former == element.Raw()) return;
    if (former) return Replace(former, element.Raw());
    Unlink(element.Raw());
    Adopt(*tree_, element.Raw());
    LinkLast(AsNode(*tree_), element.Raw());
}

String XmlDocument::Xml() const { return Serialize(AsNode(*tree_)); }

XmlNode XmlDocument::SelectSingle(StringView xpath) const {
    return XmlNode(AsNode(*tree_)).SelectSingle(xpath);
}
std::vector<XmlNode> XmlDocument::Select(StringView xpath) const {
    return SelectNodes(AsNode(*tree_), xpath);
}

XmlNode XmlDocument::CreateElement(StringView name) {
    QuietParser quiet;
    return XmlNode(NewLooseElement(*tree_, TreeName(name)));
}

void XmlDocument::AppendInstruction(StringView target, StringView data) {
    if (data.find(u"?>") != StringView::npos) throw AutomationError(ERR_InvalidCall);
    QuietParser quiet;
    LinkLast(AsNode(*tree_), NewInstruction(*tree_, TreeName(target), TreeText(data)));
}

}  // namespace quorix
