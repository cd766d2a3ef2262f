// The members that every collection has: Item (the default one), Count, Add, Remove and _NewEnum.
#pragma once

#include "quorix/scripting/Class.h"

namespace quorix::scripting {

template <class List>
auto ItemOf(List& list, const Index& index) {
    return std::visit([&](const auto& at) { return std::as_const(list).Item(at); }, index);
}

template <class List>
void RemoveFrom(List& list, const Index& index) {
    std::visit([&](const auto& at) { list.Remove(at); }, index);
}

template <class List>
Values ElementsOf(List& list) {
    Values elements;
    for (const auto& element : list) elements.push_back(ToValue(element));
    return elements;
}

template <class Element>
void AddTo(Collection<Element>& list, Element element, const std::optional<String>& key) {
    if (!element) throw AutomationError(ERR_ObjectNotSet);
    key ? list.Add(std::move(element), *key) : list.Add(std::move(element));
}

// The table of a collection whose elements the library makes by itself; see AddableClass.
template <class List>
Class<List> CollectionClass(const char* name) {
    return Class<List>(name)
        .Get("Item", &ItemOf<List>)
        .Get("Count", &List::Count)
        .Method("Remove", &RemoveFrom<List>)
        .Get("_NewEnum", &ElementsOf<List>);
}

template <class Element>
Class<Collection<Element>> AddableClass(const char* name) {
    return CollectionClass<Collection<Element>>(name).Method("Add", &AddTo<Element>, 1);
}

}  // namespace quorix::scripting
