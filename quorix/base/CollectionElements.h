// What a collection consists of. Who has a collection of something new instantiates it once, behind this
// header:
//
//     template class Collection<std::shared_ptr<cThing>>;
#pragma once

#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>
#include <functional>
#include <map>
#include <utility>

#include "quorix/base/Collection.h"

namespace quorix {

template <class T>
struct Collection<T>::Elements {
    struct Element {
        T item;
        const String* key = nullptr;  // which stands in byKey
    };
    // A tree that counts its nodes, so that positions need no walk and removing moves nothing.
    using Ordered =
        __gnu_pbds::tree<Sequence, Element, std::less<Sequence>, __gnu_pbds::rb_tree_tag,  // NOLINT
                         __gnu_pbds::tree_order_statistics_node_update>;

    Ordered ordered;
    std::map<String, Sequence, std::less<>> byKey;
    Sequence next = 1;
};

template <class T>
Collection<T>::Collection() : elements_(std::make_unique<Elements>()) {}

template <class T>
Collection<T>::~Collection() = default;

template <class T>
std::int32_t Collection<T>::Count() const {
    return static_cast<std::int32_t>(elements_->ordered.size());
}

template <class T>
void Collection<T>::Add(T item) {
    Append(std::move(item), nullptr);
}

template <class T>
void Collection<T>::Add(T item, StringView key) {
    auto [made, isNew] = elements_->byKey.try_emplace(String(key), elements_->next);
    if (!isNew) throw AutomationError(ERR_KeyInUse);
    try {
        Append(std::move(item), &made->first);
    } catch (...) {
        elements_->byKey.erase(made);
        throw;
    }
}

template <class T>
void Collection<T>::Append(T item, const String* key) {
    const Sequence sequence = elements_->next++;
    auto made = elements_->ordered.insert({sequence, {std::move(item), key}}).first;
    try {
        Entered(sequence, made->second.item);
    } catch (...) {
        elements_->ordered.erase(made);
        throw;
    }
}

template <class T>
bool Collection<T>::HasKey(StringView key) const {
    return elements_->byKey.find(key) != elements_->byKey.end();
}

template <class T>
void Collection<T>::Clear() {
    while (!elements_->ordered.empty()) Erase(elements_->ordered.begin()->first);
}

template <class T>
void Collection<T>::Replace(std::int32_t index, T item) {
    const Sequence sequence = SequenceOf(index);
    T& place = elements_->ordered.find(sequence)->second.item;
    Leaving(sequence, place);
    place = std::move(item);
    Entered(sequence, place);
}

template <class T>
void Collection<T>::Erase(Sequence sequence) {
    auto found = elements_->ordered.find(sequence);
    Leaving(sequence, found->second.item);
    if (found->second.key != nullptr) elements_->byKey.erase(elements_->byKey.find(*found->second.key));
    elements_->ordered.erase(found);
}

template <class T>
const T& Collection<T>::At(Sequence sequence) const {
    return elements_->ordered.find(sequence)->second.item;
}

template <class T>
std::int32_t Collection<T>::IndexOf(Sequence sequence) const {
    return static_cast<std::int32_t>(elements_->ordered.order_of_key(sequence)) + 1;
}

template <class T>
Sequence Collection<T>::SequenceOf(std::int32_t index) const {
    if (index < 1 || index > Count()) throw AutomationError(ERR_Subscript);
    return elements_->ordered.find_by_order(static_cast<std::size_t>(index) - 1)->first;
}

template <class T>
Sequence Collection<T>::SequenceOf(StringView key) const {
    auto found = elements_->byKey.find(key);
    if (found == elements_->byKey.end()) throw AutomationError(ERR_InvalidCall);
    return found->second;
}

template <class T>
typename Collection<T>::const_iterator Collection<T>::After(Sequence sequence) const {
    const_iterator at;
    auto found = elements_->ordered.upper_bound(sequence);
    if (found == elements_->ordered.end()) return at;
    at.of_ = this;
    at.sequence_ = found->first;
    at.item_ = &found->second.item;
    return at;
}

}  // namespace quorix
