#include "quorix/scripting/Classes.h"
#include "quorix/scripting/Collections.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cXData.h"

namespace quorix::scripting {
namespace {

auto FieldsOf(const std::shared_ptr<cXData>& form) { return PartOf(form, form->Fields()); }
auto OptionsOf(const std::shared_ptr<cXDataField>& field) { return PartOf(field, field->Options()); }

}  // namespace

template <>
const ClassTable& TableOf<cSearchField>() {
    using T = cSearchField;
    static const auto table = Class<T>("cSearchField")
                                  .Creatable()
                                  .Property("FieldName", &T::FieldName, &T::FieldName)
                                  .Property("FieldData", &T::FieldData, &T::FieldData);
    return table;
}

template <>
const ClassTable& TableOf<cSearchFields>() {
    using T = cSearchFields;
    static const auto table =
        CollectionClass<T>("cSearchFields").Creatable().Method("Add", &T::Add, 1).Method("Clear", &T::Clear);
    return table;
}

template <>
const ClassTable& TableOf<cSearchResult>() {
    using T = cSearchResult;
    static const auto table = Class<T>("cSearchResult")
                                  .Creatable()
                                  .Property("SearchItem", &T::SearchItem, &T::SearchItem)
                                  .Get("Fields", &T::Fields);
    return table;
}

template <>
const ClassTable& TableOf<cSearchResults>() {
    using T = cSearchResults;
    static const auto table = CollectionClass<T>("cSearchResults").Creatable().Method("Add", &T::Add, 1);
    return table;
}

template <>
const ClassTable& TableOf<cXData>() {
    using T = cXData;
    static const auto table = Class<T>("cXData")
                                  .Creatable()
                                  .Property("Title", &T::Title, &T::Title)
                                  .Property("Instructions", &T::Instructions, &T::Instructions)
                                  .Get("Fields", &FieldsOf);
    return table;
}

template <>
const ClassTable& TableOf<cXDataField>() {
    using T = cXDataField;
    static const auto table = Class<T>("cXDataField")
                                  .Creatable()
                                  .Property("Required", &T::Required, &T::Required)
                                  .Property("FieldType", &T::FieldType, &T::FieldType)
                                  .Property("Label", &T::Label, &T::Label)
                                  .Property("Var", &T::Var, &T::Var)
                                  .Property("Value", &T::Value, &T::Value)
                                  .Get("Options", &OptionsOf);
    return table;
}

template <>
const ClassTable& TableOf<cXDataOption>() {
    using T = cXDataOption;
    static const auto table = Class<T>("cXDataOption")
                                  .Creatable()
                                  .Property("Label", &T::Label, &T::Label)
                                  .Property("Value", &T::Value, &T::Value);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cXDataField>>() {
    static const auto table = AddableClass<std::shared_ptr<cXDataField>>("cXDataFields");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cXDataOption>>() {
    static const auto table = AddableClass<std::shared_ptr<cXDataOption>>("cXDataOptions");
    return table;
}

}  // namespace quorix::scripting
