#include "quorix/xml/XmlBuilder.h"

#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

XmlBuilder& Builder(void* user) { return *static_cast<XmlBuilder*>(user); }

// The name is the shared one, as the parser hands it out.
xmlAttr* NewAttribute(xmlNode* element, const xmlChar* name, const xmlChar* value) {
    auto* attribute = static_cast<xmlAttr*>(xmlMalloc(sizeof(xmlAttr)));
    *attribute = {};
    attribute->type = XML_ATTRIBUTE_NODE;
    attribute->name = name;
    attribute->parent = element;
    attribute->doc = element->doc;
    attribute->children = attribute->last = xmlNewDocText(element->doc, value);
    attribute->children->parent = AsNode(attribute);
    return attribute;
}

bool IsBlankText(const xmlNode* node) { return node->type == XML_TEXT_NODE && xmlIsBlankNode(node) == 1; }

bool HasElement(const xmlNode* parent) { return FirstElementFrom(parent->children) != nullptr; }

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

void AddAttributes(xmlNode* element, const xmlChar** pairs) {
    xmlAttr* last = nullptr;
    for (; *pairs; pairs += 2) {
        xmlAttr* attribute = NewAttribute(element, pairs[0], pairs[1]);
        attribute->prev = last;
        (last ? last->next : element->properties) = attribute;
        last = attribute;
    }
}

}  // namespace

XmlBuilder::XmlBuilder(xmlParserCtxt* parser, std::string declaration, bool enclosed)
    : parser_(parser),
      tree_(NewTree(parser->dict)),
      parent_(AsNode(*tree_)),
      declaration_(std::move(declaration)),
      enclosed_(enclosed) {}

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
        if (error->level >= XML_ERR_ERROR) Builder(user).Refuse();
    };
    return handlers;
}

void XmlBuilder::Begin() {
    parser_->sax2 = 0;  // structured errors had told the parser that prefixes are to be resolved
    sharedNames_ = xmlDictSize(parser_->dict);
    if (!declaration_.empty()) Place(NewInstruction(*tree_, "xml", declaration_));
}

XmlTreePtr XmlBuilder::Finish() {
    bool whole = !refused_ && parser_->wellFormed == 1 && HasElement(AsNode(*tree_));
    return whole ? std::move(tree_) : nullptr;
}

void XmlBuilder::Start(const xmlChar* name, const xmlChar** attributes) {
    if (++depth_ > kMaxXmlDepth + (enclosed_ ? 1 : 0)) return Refuse();
    xmlNode* element = xmlNewDocNodeEatName(tree_.get(), nullptr, const_cast<xmlChar*>(name), nullptr);
    Place(element);
    if (attributes) AddAttributes(element, attributes);
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
    if (xmlDictSize(parser_->dict) - sharedNames_ > kMaxXmlNames) Refuse();
}

void XmlBuilder::PlaceText() {
    if (text_.empty()) return;
    LinkLast(parent_, NewText(*tree_, text_.data(), text_.size()));
    text_.clear();
}

void XmlBuilder::Refuse() {
    refused_ = true;
    xmlStopParser(parser_);
}

}  // namespace quorix
