#include "quorix/automation/Classes.h"
#include "quorix/automation/Collections.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cXData.h"

namespace quorix::automation {
namespace {

auto FieldsOf(const std::shared_ptr<cXData>& form) { return PartOf(form, form->Fields()); }
auto OptionsOf(const std::shared_ptr<cXDataField>& field) { return PartOf(field, field->Options()); }

}  // namespace

template <>
const ClassTable& TableOf<cSearchField>() {
    using T = cSearchField;
    static const auto table = Class<T>(L"cSearchField")
                                  .Creatable()
                                  .Property(L"FieldName", &T::FieldName, &T::FieldName)
                                  .Property(L"FieldData", &T::FieldData, &T::FieldData);
    return table;
}

template <>
const ClassTable& TableOf<cSearchFields>() {
    using T = cSearchFields;
    static const auto table = CollectionClass<T>(L"cSearchFields")
                                  .Creatable()
                                  .Method(L"Add", &T::Add, 1)
                                  .Method(L"Clear", &T::Clear);
    return table;
}

template <>
const ClassTable& TableOf<cSearchResult>() {
    using T = cSearchResult;
    static const auto table = Class<T>(L"cSearchResult")
                                  .Creatable()
                                  .Property(L"SearchItem", &T::SearchItem, &T::SearchItem)
                                  .Get(L"Fields", &T::Fields);
    return table;
}

template <>
const ClassTable& TableOf<cSearchResults>() {
    using T = cSearchResults;
    static const auto table = CollectionClass<T>(L"cSearchResults").Creatable().Method(L"Add", &T::Add, 1);
    return table;
}

template <>
const ClassTable& TableOf<cXData>() {
    using T = cXData;
    static const auto table = Class<T>(L"cXData")
                                  .Creatable()
                                  .Property(L"Title", &T::Title, &T::Title)
                                  .Property(L"Instructions", &T::Instructions, &T::Instructions)
                                  .Get(L"Fields", &FieldsOf);
    return table;
}

template <>
const ClassTable& TableOf<cXDataField>() {
    using T = cXDataField;
    static const auto table = Class<T>(L"cXDataField")
                                  .Creatable()
                                  .Property(L"Required", &T::Required, &T::Required)
                                  .Property(L"FieldType", &T::FieldType, &T::FieldType)
                                  .Property(L"Label", &T::Label, &T::Label)
                                  .Property(L"Var", &T::Var, &T::Var)
                                  .Property(L"Value", &T::Value, &T::Value)
                                  .Get(L"Options", &OptionsOf);
    return table;
}

template <>
const ClassTable& TableOf<cXDataOption>() {
    using T = cXDataOption;
    static const auto table = Class<T>(L"cXDataOption")
                                  .Creatable()
                                  .Property(L"Label", &T::Label, &T::Label)
                                  .Property(L"Value", &T::Value, &T::Value);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cXDataField>>() {
    static const auto table = AddableClass<std::shared_ptr<cXDataField>>(L"cXDataFields");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cXDataOption>>() {
    static const auto table = AddableClass<std::shared_ptr<cXDataOption>>(L"cXDataOptions");
    return table;
}

}  // namespace quorix::automation
