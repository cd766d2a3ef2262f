#include "quorix/xml/AttributeIndex.h"

#include <utility>

namespace quorix {

xmlAttr* AttributeIndex::Find(xmlNode* element, const std::string& name) {
    if (element != element_) {
        Forget();
        for (xmlAttr* attribute = element->properties; attribute; attribute = attribute->next)
            Append(attribute);
        element_ = element;
    }
    auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

// When memory runs out, the element is read anew.
void AttributeIndex::Append(xmlAttr* attribute) {
    const xmlNode* element = std::exchange(element_, nullptr);
    byName_.emplace(reinterpret_cast<const char*>(attribute->name), attribute);
    last_ = attribute;
    element_ = element;
}

void AttributeIndex::Forget() {
    element_ = nullptr;
    last_ = nullptr;
    byName_.clear();
}

}  // namespace quorix
