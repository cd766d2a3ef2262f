#include "quorix/xml/XmlBuilder.h"

#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

XmlBuilder& Builder(void* user) { return *static_cast<XmlBuilder*>(user); }

bool IsBlankText(const xmlNode* node) { return node->type == XML_TEXT_NODE && xmlIsBlankNode(node) == 1; }

bool HasElement(const xmlNode* parent) {
    const xmlNode* child = parent->children;
    while (child && !IsElementNode(child)) child = child->next;
    return child != nullptr;
}

void DropBlankText(xmlNode* parent) {
    for (xmlNode* child = parent->children; child;) {
        xmlNode* next = child->next;
        if (IsBlankText(child)) {
            xmlUnlinkNode(child);
            xmlFreeNode(child);
        }
        child = next;
    }
}

}  // namespace

XmlBuilder::XmlBuilder(xmlParserCtxt* parser, bool enclosed)
    : parser_(parser), tree_(NewTree(parser->dict)), parent_(AsNode(*tree_)), enclosed_(enclosed) {}

xmlSAXHandler XmlBuilder::Handlers() {
    xmlSAXHandler handlers = {};
    handlers.initialized = XML_SAX2_MAGIC;  // says that `serror` is there, so that nothing is ever printed
    handlers.startDocument = [](void* user) { Builder(user).Begin(); };
    handlers.startElement = [](void* user, const xmlChar* name, const xmlChar** attributes) {
        Builder(user).Start(name, attributes);
    };
    handlers.endElement = [](void* user, const xmlChar*) { Builder(user).End(); };
    handlers.characters = [](void* user, const xmlChar* text, int size) {
        Builder(user).Characters(text, size);
    };
    handlers.ignorableWhitespace = handlers.characters;
    handlers.cdataBlock = [](void* user, const xmlChar* text, int size) {
        Builder(user).Place(xmlNewCDataBlock(&Builder(user).Tree(), text, size));
    };
    handlers.comment = [](void* user, const xmlChar* text) {
        Builder(user).Place(xmlNewDocComment(&Builder(user).Tree(), text));
    };
    handlers.processingInstruction = [](void* user, const xmlChar* target, const xmlChar* data) {
        Builder(user).Place(xmlNewDocPI(&Builder(user).Tree(), target, data));
    };
    handlers.internalSubset = [](void* user, const xmlChar*, const xmlChar*, const xmlChar*) {
        Builder(user).Refuse();
    };
    handlers.serror = [](void* user, xmlError* error) {
        if (error->level == XML_ERR_FATAL) Builder(user).Refuse();
    };
    return handlers;
}

// The parser takes handlers with structured errors for ones that want prefixes resolved.
void XmlBuilder::Begin() { parser_->sax2 = 0; }

XmlTreePtr XmlBuilder::Finish() {
    bool whole = !refused_ && parser_->wellFormed == 1 && HasElement(AsNode(*tree_));
    return whole ? std::move(tree_) : nullptr;
}

void XmlBuilder::Start(const xmlChar* name, const xmlChar** attributes) {
    if (++depth_ > kMaxXmlDepth) return Refuse();
    xmlNode* element = xmlNewDocNodeEatName(tree_.get(), nullptr, const_cast<xmlChar*>(name), nullptr);
    Place(element);
    for (; attributes && *attributes; attributes += 2) AddAttribute(element, attributes[0], attributes[1]);
    parent_ = element;
}

void XmlBuilder::End() {
    PlaceText();
    if ((enclosed_ && depth_ == 1) || HasElement(parent_)) DropBlankText(parent_);
    parent_ = parent_->parent;
    --depth_;
}

void XmlBuilder::Characters(const xmlChar* text, int size) {
    text_.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

void XmlBuilder::Place(xmlNode* node) {
    PlaceText();
    LinkLast(parent_, node);
}

void XmlBuilder::PlaceText() {
    if (text_.empty()) return;
    LinkLast(parent_, NewText(*tree_, text_.data(), text_.size()));
    text_.clear();
}

void XmlBuilder::AddAttribute(xmlNode* element, const xmlChar* name, const xmlChar* value) {
    xmlNewNsPropEatName(element, nullptr, const_cast<xmlChar*>(name), value);
}

void XmlBuilder::Refuse() {
    refused_ = true;
    xmlStopParser(parser_);
}

}  // namespace quorix
