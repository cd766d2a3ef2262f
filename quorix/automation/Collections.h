// The members that every collection has: Item (the default one), Count, Add, Remove and _NewEnum.
#pragma once

#include "quorix/automation/ClassTable.h"
#include "quorix/automation/Custom.h"

namespace quorix::automation {

// A new enumerator over `values`, which are copied.
Variant MakeEnumerator(const std::vector<Variant>& values);

// Text is a key, everything else a position.
bool IsKey(const Variant& index);

template <class List>
Variant ItemOf(List& list, Variant index) {
    if (IsKey(index)) return ToVariant(std::as_const(list).Item(StringView(FromVariant<String>(index))));
    return ToVariant(std::as_const(list).Item(FromVariant<std::int32_t>(index)));
}

template <class List>
void RemoveFrom(List& list, Variant index) {
    if (IsKey(index)) return list.Remove(StringView(FromVariant<String>(index)));
    list.Remove(FromVariant<std::int32_t>(index));
}

template <class List>
Variant Enumerate(List& list) {
    std::vector<Variant> values;
    for (const auto& element : list) values.push_back(ToVariant(element));
    return MakeEnumerator(values);
}

template <class Element>
void AddTo(Collection<Element>& list, Element element, Variant key) {
    if (!element) throw AutomationError(ERR_ObjectNotSet);
    if (IsMissing(key)) return list.Add(std::move(element));
    list.Add(std::move(element), StringView(FromVariant<String>(key)));
}

// The table of a collection whose elements the library makes by itself; see Addable.
template <class List>
Class<List> CollectionClass(const wchar_t* name) {
    return Class<List>(name)
        .Get(L"Item", &ItemOf<List>)
        .Get(L"Count", &List::Count)
        .Method(L"Remove", &RemoveFrom<List>)
        .Get(L"_NewEnum", &Enumerate<List>);
}

template <class Element>
Class<Collection<Element>> AddableClass(const wchar_t* name) {
    return CollectionClass<Collection<Element>>(name).Method(L"Add", &AddTo<Element>, 1);
}

}  // namespace quorix::automation
