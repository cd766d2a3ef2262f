/// \file
/// A record that tells the tables that it stands in of each change of a field that they find it by.
#pragma once

#include <forward_list>
#include <utility>

#include "quorix/base/Collection.h"

namespace quorix {

/// What a record tells the tables that it stands in, around each change of a field that they find it by.
class RecordWatcher {
public:
    virtual void Forget(Sequence sequence) = 0;
    virtual void Learn(Sequence sequence) = 0;

protected:
    ~RecordWatcher() = default;
};

/// The base of such a record. A record may stand in several tables, and in one several times.
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

}  // namespace quorix
