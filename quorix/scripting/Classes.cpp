#include "quorix/scripting/Classes.h"

namespace quorix::scripting {

const std::vector<const ClassTable*>& Classes() {
    static const std::vector<const ClassTable*> all = {
        &TableOf<cSession>(),
        &TableOf<cAuth>(),
        &TableOf<cMessage>(),
        &TableOf<cPresenceItem>(),
        &TableOf<cRosterItem>(),
        &TableOf<Shared<cPresenceItem>>(),
        &TableOf<Shared<cRosterItem>>(),
        &TableOf<GroupList>(),
        &TableOf<cVcard>(),
        &TableOf<cXML_Node>(),
        &TableOf<cXML_Writer>(),
        &TableOf<Collection<NodePtr>>(),
        &TableOf<XmlNode>(),
        &TableOf<DomNodeList>(),
        &TableOf<cSocketSSL>(),
        &TableOf<cAgentItem>(),
        &TableOf<cAgentField>(),
        &TableOf<cAgentAttrib>(),
        &TableOf<Shared<cAgentItem>>(),
        &TableOf<Shared<cGroupChat>>(),
        &TableOf<Shared<cAgentField>>(),
        &TableOf<Shared<cAgentAttrib>>(),
        &TableOf<cSearchField>(),
        &TableOf<cSearchFields>(),
        &TableOf<cSearchResult>(),
        &TableOf<cSearchResults>(),
        &TableOf<cXData>(),
        &TableOf<cXDataField>(),
        &TableOf<cXDataOption>(),
        &TableOf<Shared<cXDataField>>(),
        &TableOf<Shared<cXDataOption>>(),
        &TableOf<cGroupChat>(),
        &TableOf<cBrowseItem>(),
    };
    return all;
}

}  // namespace quorix::scripting
