// Every class that the automation world sees, and where its table is.
#pragma once

#include <vector>

#include "quorix/automation/ClassTable.h"
#include "quorix/automation/tables/DomNodes.h"
#include "quorix/base/Collection.h"
#include "quorix/link/SessionEvents.h"
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

namespace quorix::automation {

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

}  // namespace quorix::automation
