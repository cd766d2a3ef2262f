#include "quorix/automation/Classes.h"
#include "quorix/automation/Collections.h"
#include "quorix/services/cAgentItem.h"

namespace quorix::automation {
namespace {

auto FieldsOf(const std::shared_ptr<cAgentItem>& agent) { return PartOf(agent, agent->Fields()); }
auto AttribsOf(const std::shared_ptr<cAgentItem>& agent) { return PartOf(agent, agent->Attribs()); }

}  // namespace

template <>
const ClassTable& TableOf<cAgentItem>() {
    using T = cAgentItem;
    static const auto table = Class<T>(L"cAgentItem")
                                  .Property(L"xml", &T::xml, &T::xml)
                                  .Get(L"Fields", &FieldsOf)
                                  .Get(L"Attribs", &AttribsOf)
                                  .Property(L"xData", &T::xData, &T::xData)
                                  .Get(L"JID", &T::JID)
                                  .Get(L"Name", &T::Name)
                                  .Get(L"Service", &T::Service)
                                  .Get(L"CanRegister", &T::CanRegister)
                                  .Get(L"CanSearch", &T::CanSearch)
                                  .Get(L"IsGroupChat", &T::IsGroupChat)
                                  .Get(L"IsTransport", &T::IsTransport)
                                  .Get(L"Registered", &T::Registered)
                                  .Method(L"GetSearchFields", &T::GetSearchFields)
                                  .Method(L"Search", &T::Search)
                                  .Method(L"QueryGateway", &T::QueryGateway)
                                  .Method(L"Update", &T::Update)
                                  .Method(L"Delete", &T::Delete)
                                  .Method(L"AddField", &T::AddField)
                                  .Method(L"AddAttrib", &T::AddAttrib)
                                  .Method(L"FindField", &T::FindField)
                                  .Method(L"FindAttrib", &T::FindAttrib)
                                  .Method(L"GetField", &T::GetField)
                                  .Method(L"SetField", &T::SetField);
    return table;
}

template <>
const ClassTable& TableOf<cAgentField>() {
    using T = cAgentField;
    static const auto table = Class<T>(L"cAgentField")
                                  .Creatable()
                                  .Property(L"Name", &T::Name, &T::Name)
                                  .Property(L"Value", &T::Value, &T::Value)
                                  .Property(L"cAgentItem", &T::cAgentItem, &T::cAgentItem);
    return table;
}

template <>
const ClassTable& TableOf<cAgentAttrib>() {
    using T = cAgentAttrib;
    static const auto table = Class<T>(L"cAgentAttrib")
                                  .Creatable()
                                  .Property(L"Name", &T::Name, &T::Name)
                                  .Property(L"Value", &T::Value, &T::Value);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentItem>>(L"cAgents");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentField>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentField>>(L"cAgentFields");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cAgentAttrib>>() {
    static const auto table = AddableClass<std::shared_ptr<cAgentAttrib>>(L"cAgentAttribs");
    return table;
}

}  // namespace quorix::automation
