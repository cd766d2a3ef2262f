// Conversions of the library's own types that are neither values nor shared objects: live nodes, and parts of
// an object that end with it.
#pragma once

#include <memory>

#include "quorix/automation/Variant.h"
#include "quorix/base/Collection.h"
#include "quorix/xml/XmlNode.h"

namespace quorix::automation {

// A node is the same object to the automation world as long as it is the same node, not the same handle.
template <>
struct Custom<XmlNode> {
    static Variant To(const XmlNode& node);
    static XmlNode From(const VARIANT& value);
};

// The part of `owner` that `part` refers to, keeping the owner alive.
template <class Part, class Owner>
std::shared_ptr<Part> PartOf(const std::shared_ptr<Owner>& owner, Part& part) {
    return {owner, &part};
}

}  // namespace quorix::automation
