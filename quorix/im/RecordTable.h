// A collection of shared records that finds them by their fields without a walk. It finds what a walk would
// find, also after the application has changed a record or the collection.
#pragma once

#include <forward_list>
#include <functional>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include "quorix/base/Collection.h"
#include "quorix/base/String.h"

namespace quorix {

// What a record tells the tables that it stands in, around each change of a field that they find it by.
class RecordWatcher {
public:
    virtual void Forget(Sequence sequence) = 0;
    virtual void Learn(Sequence sequence) = 0;

protected:
    ~RecordWatcher() = default;
};

// The base of such a record. A record may stand in several tables, and in one several times.
class WatchedRecord {
public:
    WatchedRecord() = default;
    WatchedRecord(const WatchedRecord&) = delete;
    WatchedRecord& operator=(const WatchedRecord&) = delete;

protected:
    ~WatchedRecord() = default;

    template <class Field>
    void Assign(Field& field, Field value) {
        if (field == value) return;
        for (const Place& place : places_) place.table->Forget(place.sequence);
        field = std::move(value);
        for (const Place& place : places_) place.table->Learn(place.sequence);
    }

private:
    template <class Record, class Index>
    friend class RecordTable;

    struct Place {
        RecordWatcher* table;
        Sequence sequence;
        bool operator==(const Place&) const = default;
    };
    std::forward_list<Place> places_;  // most often one
};

// `Index` holds what is needed to find a record: Learn(sequence, record) and Forget(sequence, record), which
// change nothing when memory runs out; a record that was not learnt may be forgotten. A null that the
// application has added is never found.
template <class Record, class Index>
class RecordTable : public Collection<std::shared_ptr<Record>>, private RecordWatcher {
public:
    RecordTable() = default;
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;
    // Whatever memory there is: the index goes as a whole.
    ~RecordTable() override {
        for (const std::shared_ptr<Record>& record : *this) {
            if (record)
                std::erase_if(record->places_, [this](const auto& place) { return place.table == this; });
        }
    }

protected:
    const Index& GetIndex() const { return index_; }

private:
    void Entered(Sequence sequence, const std::shared_ptr<Record>& record) final {
        if (!record) return;
        record->places_.push_front({this, sequence});
        try {
            index_.Learn(sequence, *record);
        } catch (...) {
            record->places_.pop_front();
            throw;
        }
    }
    void Leaving(Sequence sequence, const std::shared_ptr<Record>& record) final {
        if (!record) return;
        index_.Forget(sequence, *record);
        std::erase(record->places_, WatchedRecord::Place{this, sequence});
    }
    void Forget(Sequence sequence) final { index_.Forget(sequence, *this->At(sequence)); }
    void Learn(Sequence sequence) final { index_.Learn(sequence, *this->At(sequence)); }

    Index index_;
};

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
