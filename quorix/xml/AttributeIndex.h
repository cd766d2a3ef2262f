// Finds an attribute of an element that has many, without a walk.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <unordered_map>

namespace quorix {

// It knows one element at a time, the one that was written last, and must forget it when an attribute goes.
class AttributeIndex {
public:
    // The attribute of this name; null when there is none.
    xmlAttr* Find(xmlNode* element, const std::string& name);

    // The element that Find was asked about has a new last attribute.
    void Append(xmlAttr* attribute);

    // Its last attribute.
    xmlAttr* Last() const { return last_; }

    void Forget();

private:
    const xmlNode* element_ = nullptr;
    xmlAttr* last_ = nullptr;
    std::unordered_map<std::string, xmlAttr*> byName_;
};

}  // namespace quorix
