#include "quorix/automation/Classes.h"
#include "quorix/automation/Collections.h"
#include "quorix/xml/cXML_Node.h"
#include "quorix/xml/cXML_Writer.h"

namespace quorix::automation {
namespace {

using T = cXML_Node;
using Where = std::shared_ptr<DomNodeList>;  // null: the whole document

String GetTag(T& node, StringView tag, const Where& nodes) {
    return nodes ? node.GetTag(tag, nodes->Nodes()) : node.GetTag(tag);
}
bool FindTag(T& node, StringView tag, const Where& nodes) {
    return nodes ? node.FindTag(tag, nodes->Nodes()) : node.FindTag(tag);
}
bool TagExists(T& node, StringView tag, const Where& nodes) {
    return nodes ? node.TagExists(tag, nodes->Nodes()) : node.TagExists(tag);
}
void SetTag(T& node, StringView tag, StringView text, const Where& nodes) {
    nodes ? node.SetTag(tag, text, nodes->Nodes()) : node.SetTag(tag, text);
}
void AddTag(T& node, StringView tag, StringView parent, StringView text, const Where& nodes) {
    nodes ? node.AddTag(tag, parent, text, nodes->Nodes()) : node.AddTag(tag, parent, text);
}
String GetAttrib(T& node, StringView name, const Where& nodes) {
    return nodes ? node.GetAttrib(name, nodes->Nodes()) : node.GetAttrib(name);
}
bool FindAttrib(T& node, StringView name, const Where& nodes) {
    return nodes ? node.FindAttrib(name, nodes->Nodes()) : node.FindAttrib(name);
}
void SetAttrib(T& node, StringView name, StringView value, const Where& nodes) {
    nodes ? node.setAttrib(name, value, nodes->Nodes()) : node.setAttrib(name, value);
}
void AddAttrib(T& node, StringView name, StringView tag, StringView value, const Where& nodes) {
    nodes ? node.AddAttrib(name, tag, value, nodes->Nodes()) : node.AddAttrib(name, tag, value);
}

}  // namespace

template <>
const ClassTable& TableOf<cXML_Node>() {
    static const auto table = Class<T>(L"cXML_Node")
                                  .Creatable()
                                  .Method(L"GetNamespace", &T::GetNamespace)
                                  .Method(L"getNode", &T::getNode)
                                  .Method(L"getNodes", &T::getNodes)
                                  .Method(L"AddAttrib", &AddAttrib, 1)
                                  .Method(L"GetAttrib", &GetAttrib, 1)
                                  .Method(L"setAttrib", &SetAttrib, 1)
                                  .Method(L"FindAttrib", &FindAttrib, 1)
                                  .Method(L"TagExists", &TagExists, 1)
                                  .Method(L"GetTag", &GetTag, 1)
                                  .Method(L"GetTagInt", &T::GetTagInt)
                                  .Method(L"GetTagLng", &T::GetTagLng)
                                  .Method(L"GetTagYesNo", &T::GetTagYesNo)
                                  .Method(L"AddTag", &AddTag, 1)
                                  .Method(L"SetTag", &SetTag, 1)
                                  .Method(L"FindTag", &FindTag, 1)
                                  .Method(L"SaveXML_ToFile", &T::SaveXML_ToFile)
                                  .Method(L"LoadXML_FromFile", &T::LoadXML_FromFile)
                                  .Property(L"xml", &T::xml, &T::xml);
    return table;
}

template <>
const ClassTable& TableOf<cXML_Writer>() {
    static const auto table =
        Class<cXML_Writer>(L"cXML_Writer")
            .Creatable()
            .Method(L"addNode", &cXML_Writer::addNode, 1)
            .Method(L"setAttrib", &cXML_Writer::setAttrib)
            .Method(L"setNode", &cXML_Writer::setNode)
            .Method(L"setRootElement", &cXML_Writer::setRootElement)
            .Method(L"createProcessingInstruction", &cXML_Writer::createProcessingInstruction)
            .Method(L"SaveXML_ToFile", &cXML_Writer::SaveXML_ToFile)
            .Method(L"LoadXML_FromFile", &cXML_Writer::LoadXML_FromFile)
            .Property(L"xml", &cXML_Writer::xml, &cXML_Writer::xml);
    return table;
}

template <>
const ClassTable& TableOf<Collection<NodePtr>>() {
    static const auto table = AddableClass<NodePtr>(L"cXML_Nodes");
    return table;
}

}  // namespace quorix::automation
