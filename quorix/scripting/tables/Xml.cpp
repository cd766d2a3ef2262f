#include "quorix/scripting/Classes.h"
#include "quorix/scripting/Collections.h"
#include "quorix/xml/cXML_Node.h"
#include "quorix/xml/cXML_Writer.h"

namespace quorix::scripting {
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
    static const auto table = Class<T>("cXML_Node")
                                  .Creatable()
                                  .Method("GetNamespace", &T::GetNamespace)
                                  .Method("getNode", &T::getNode)
                                  .Method("getNodes", &T::getNodes)
                                  .Method("AddAttrib", &AddAttrib, 1)
                                  .Method("GetAttrib", &GetAttrib, 1)
                                  .Method("setAttrib", &SetAttrib, 1)
                                  .Method("FindAttrib", &FindAttrib, 1)
                                  .Method("TagExists", &TagExists, 1)
                                  .Method("GetTag", &GetTag, 1)
                                  .Method("GetTagInt", &T::GetTagInt)
                                  .Method("GetTagLng", &T::GetTagLng)
                                  .Method("GetTagYesNo", &T::GetTagYesNo)
                                  .Method("AddTag", &AddTag, 1)
                                  .Method("SetTag", &SetTag, 1)
                                  .Method("FindTag", &FindTag, 1)
                                  .Method("SaveXML_ToFile", &T::SaveXML_ToFile)
                                  .Method("LoadXML_FromFile", &T::LoadXML_FromFile)
                                  .Property("xml", &T::xml, &T::xml);
    return table;
}

template <>
const ClassTable& TableOf<cXML_Writer>() {
    static const auto table =
        Class<cXML_Writer>("cXML_Writer")
            .Creatable()
            .Method("addNode", &cXML_Writer::addNode, 1)
            .Method("setAttrib", &cXML_Writer::setAttrib)
            .Method("setNode", &cXML_Writer::setNode)
            .Method("setRootElement", &cXML_Writer::setRootElement)
            .Method("createProcessingInstruction", &cXML_Writer::createProcessingInstruction)
            .Method("SaveXML_ToFile", &cXML_Writer::SaveXML_ToFile)
            .Method("LoadXML_FromFile", &cXML_Writer::LoadXML_FromFile)
            .Property("xml", &cXML_Writer::xml, &cXML_Writer::xml);
    return table;
}

template <>
const ClassTable& TableOf<Collection<NodePtr>>() {
    static const auto table = AddableClass<NodePtr>("cXML_Nodes");
    return table;
}

}  // namespace quorix::scripting
