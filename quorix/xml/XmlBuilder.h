// Builds a tree from the parser's callbacks.
#pragma once

#include <libxml/parser.h>

#include <string>

#include "quorix/xml/XmlTree.h"

namespace quorix {

class XmlBuilder {
public:
    // `enclosed`: the document element is an enclosing one.
    XmlBuilder(xmlParserCtxt* parser, std::string declaration, bool enclosed);

    // The callbacks; each takes the builder as its user data.
    static xmlSAXHandler Handlers();

    // The tree, or null when building stopped before the end.
    XmlTreePtr Finish();

    void Begin();
    void Start(const xmlChar* name, const xmlChar** attributes);
    void End();
    void Characters(const xmlChar* text, int size);
    void Place(xmlNode* node);  // a comment, a CDATA section or an instruction
    void Refuse();

    XmlTree& Tree() { return *tree_; }

private:
    void PlaceText();

    xmlParserCtxt* parser_;
    XmlTreePtr tree_;
    xmlNode* parent_;
    std::string declaration_;
    std::string text_;  // character data comes in pieces
    int depth_ = 0;
    int sharedNames_ = 0;
    bool enclosed_;
    bool refused_ = false;
};

}  // namespace quorix
