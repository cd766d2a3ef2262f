#include "quorix/scripting/Classes.h"
#include "quorix/scripting/Collections.h"
#include "quorix/services/cAgentItem.h"

namespace quorix::scripting {
namespace {

auto FieldsOf(const std::shared_ptr<cAgentItem>& agent) { return PartOf(agent, agent->Fields()); }
auto AttribsOf(const std::shared_ptr<cAgentItem>& agent) { return PartOf(agent, agent->Attribs()); }

}  // namespace

template <>
const ClassTable& TableOf<cAgentItem>() {
    using T = cAgentItem;
    static const auto table = Class<T>("cAgentItem")
                                  .Property("xml", &T::xml, &T::xml)
                                  .Get("Fields", &FieldsOf)
                                  .Get("Attribs", &AttribsOf)
                                  .Property("xData", &T::xData, &T::xData)
                                  .Get("JID", &T::JID)
                                  .Get("Name", &T::Name)
                                  .Get("Service", &T::Service)
                                  .Get("CanRegister", &T::CanRegister)
                                  .Get("CanSearch", &T::CanSearch)
                                  .Get("IsGroupChat", &T::IsGroupChat)
                                  .Get("IsTransport", &T::IsTransport)
                                  .Get("Registered", &T::Registered)
                                  .Method("GetSearchFields", &T::GetSearchFields)
                                  .Method("Search", &T::Search)
                                  .Method("QueryGateway", &T::QueryGateway)
                                  .Method("Update", &T::Update)
                                  .Method("Delete", &T::Delete)
                                  .Method("AddField", &T::AddField)
                                  .Method("AddAttrib", &T::AddAttrib)
                                  .Method("FindField", &T::FindField)
                                  .Method("FindAttrib", &T::FindAttrib)
                                  .Method("GetField", &T::GetField)
                                  .Method("SetField", &T::SetField);
    return table;
}

template <>
const ClassTable& TableOf<cAgentField>() {
    using T = cAgentField;
    static const auto table = Class<T>("cAgentField")
                                  .Creatable()
                                  .Property("Name", &T::Name, &T::Name)
                                  .Property("Value", &T::Value, &T::Value)
                                  .Property("cAgentItem", &T::cAgentItem, &T::cAgentItem);
    return table;
}

template <>
const ClassTable& TableOf<cAgentAttrib>() {
    using T = cAgentAttrib;
    static const auto table = Class<T>("cAgentAttrib")
                                  .Creatable()
                                  .Property("Name", &T::Name, &T::Name)
                                  .Property("Value", &T::Value, &T::Value);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentItem>>("cAgents");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentField>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentField>>("cAgentFields");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentAttrib>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentAttrib>>("cAgentAttribs");
    return table;
}

}  // namespace quorix::scripting
