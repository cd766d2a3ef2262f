// What a table of records consists of: its members, and what indices are made of. A table's source
// instantiates it behind this header.
#pragma once

#include <functional>
#include <set>
#include <unordered_map>
#include <utility>

#include "quorix/base/CollectionElements.h"
#include "quorix/im/RecordTable.h"

namespace quorix {

template <class Record, class Index>
RecordTable<Record, Index>::RecordTable() : index_(std::make_unique<Index>()) {}

// Whatever memory there is: the index goes as a whole.
template <class Record, class Index>
RecordTable<Record, Index>::~RecordTable() {
    for (const std::shared_ptr<Record>& record : *this) {
        if (record) std::erase_if(record->places_, [this](const auto& place) { return place.table == this; });
    }
}

template <class Record, class Index>
void RecordTable<Record, Index>::Entered(Sequence sequence, const std::shared_ptr<Record>& record) {
    if (!record) return;
    record->places_.push_front({this, sequence});
    try {
        index_->Learn(sequence, *record);
    } catch (...) {
        record->places_.pop_front();
        throw;
    }
}

template <class Record, class Index>
void RecordTable<Record, Index>::Leaving(Sequence sequence, const std::shared_ptr<Record>& record) {
    if (!record) return;
    index_->Forget(sequence, *record);
    std::erase(record->places_, WatchedRecord::Place{this, sequence});
}

template <class Record, class Index>
void RecordTable<Record, Index>::Forget(Sequence sequence) {
    index_->Forget(sequence, *this->At(sequence));
}

template <class Record, class Index>
void RecordTable<Record, Index>::Learn(Sequence sequence) {
    index_->Learn(sequence, *this->At(sequence));
}

// For looking up in a hash table with a view.
struct StringHash {
    using is_transparent = void;
    std::size_t operator()(StringView text) const { return std::hash<StringView>()(text); }
};
template <class Value>
using StringMap = std::unordered_map<String, Value, StringHash, std::equal_to<>>;

// Sequences ordered by a key, those of one key in the order of the collection.
template <class Key>
using Ordered = std::set<std::pair<Key, Sequence>>;

// The first sequence of `key`, 0 when there is none.
template <class Key>
Sequence FirstOf(const Ordered<Key>& ordered, const Key& key) {
    auto found = ordered.lower_bound({key, 0});
    return found != ordered.end() && found->first == key ? found->second : 0;
}

}  // namespace quorix
