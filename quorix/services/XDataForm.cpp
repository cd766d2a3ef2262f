#include "quorix/services/XDataForm.h"
#include "quorix/base/CollectionElements.h"

namespace quorix {

template class Collection<std::shared_ptr<cXDataOption>>;
template class Collection<std::shared_ptr<cXDataField>>;

namespace {

std::shared_ptr<cXDataOption> ReadOption(const ParsedNode& element) {
    auto option = std::make_shared<cXDataOption>();
    option->Label(element.Attribute(u"label"));
    option->Value(element.Child(u"value").Text());
    return option;
}

std::shared_ptr<cXDataField> ReadField(const ParsedNode& element) {
    auto field = std::make_shared<cXDataField>();
    field->FieldType(element.Attribute(u"type"));
    field->Label(element.Attribute(u"label"));
    field->Var(element.Attribute(u"var"));
    field->Value(element.Child(u"value").Text());
    field->Required(static_cast<bool>(element.Child(u"required")));
    for (ParsedNode child = element.FirstElement(); child; child = child.NextElement()) {
        if (child.Is(u"option")) field->Options().Add(ReadOption(child));
    }
    return field;
}

}  // namespace

void FillXData(cXData& form, const ParsedNode& x) {
    form.Instructions(x.Child(u"instructions").Text());
    form.Title(x.Child(u"title").Text());
    for (ParsedNode child = x.FirstElement(); child; child = child.NextElement()) {
        if (child.Is(u"field")) form.Fields().Add(ReadField(child));
    }
}

}  // namespace quorix
