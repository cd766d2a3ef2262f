// Every class that scripts see, and where its table is.
#pragma once

#include <vector>

#include "quorix/base/Collection.h"
#include "quorix/link/SessionEvents.h"
#include "quorix/scripting/Class.h"
#include "quorix/scripting/tables/DomNodes.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {
class cXML_Writer;
class cAuth;
class cSession;
class cSocketSSL;
class cAgentField;
class cAgentAttrib;
class cSearchField;
class cSearchResult;
class cXData;
class cXDataField;
class cXDataOption;
}  // namespace quorix

namespace quorix::scripting {

class GroupList;

const std::vector<const ClassTable*>& Classes();

template <class T>
using Shared = Collection<std::shared_ptr<T>>;

template <>
const ClassTable& TableOf<XmlNode>();
template <>
const ClassTable& TableOf<DomNodeList>();
template <>
const ClassTable& TableOf<cXML_Node>();
template <>
const ClassTable& TableOf<Collection<NodePtr>>();
template <>
const ClassTable& TableOf<cXML_Writer>();
template <>
const ClassTable& TableOf<cAuth>();
template <>
const ClassTable& TableOf<cSession>();
template <>
const ClassTable& TableOf<cSocketSSL>();
template <>
const ClassTable& TableOf<cMessage>();
template <>
const ClassTable& TableOf<cPresenceItem>();
template <>
const ClassTable& TableOf<cRosterItem>();
template <>
const ClassTable& TableOf<cAgentItem>();
template <>
const ClassTable& TableOf<cAgentField>();
template <>
const ClassTable& TableOf<cAgentAttrib>();
template <>
const ClassTable& TableOf<cSearchField>();
template <>
const ClassTable& TableOf<cSearchFields>();
template <>
const ClassTable& TableOf<cSearchResult>();
template <>
const ClassTable& TableOf<cSearchResults>();
template <>
const ClassTable& TableOf<cXData>();
template <>
const ClassTable& TableOf<cXDataField>();
template <>
const ClassTable& TableOf<cXDataOption>();
template <>
const ClassTable& TableOf<cGroupChat>();
template <>
const ClassTable& TableOf<cBrowseItem>();
template <>
const ClassTable& TableOf<cVcard>();
template <>
const ClassTable& TableOf<GroupList>();
template <>
const ClassTable& TableOf<Shared<cRosterItem>>();
template <>
const ClassTable& TableOf<Shared<cPresenceItem>>();
template <>
const ClassTable& TableOf<Shared<cAgentItem>>();
template <>
const ClassTable& TableOf<Shared<cGroupChat>>();
template <>
const ClassTable& TableOf<Shared<cAgentField>>();
template <>
const ClassTable& TableOf<Shared<cAgentAttrib>>();
template <>
const ClassTable& TableOf<Shared<cXDataField>>();
template <>
const ClassTable& TableOf<Shared<cXDataOption>>();

}  // namespace quorix::scripting
