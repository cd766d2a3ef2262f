#include "quorix/automation/Classes.h"

namespace quorix::automation {

const std::vector<const ClassTable*>& Classes() {
    static const std::vector<const ClassTable*> all = {
        &TableOf<cXML_Node>(),
        &TableOf<Collection<NodePtr>>(),
        &TableOf<XmlNode>(),
        &TableOf<DomNodeList>(),
    };
    return all;
}

}  // namespace quorix::automation
