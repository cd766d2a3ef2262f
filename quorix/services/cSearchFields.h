/// \file
/// The fields of a search form, and the values of one search hit: ordered name-value pairs.
///
/// Ownership: shared; an application may keep any collection or field that it is given.
/// Threads: like the session that filled them.
#pragma once

#include <memory>

#include "quorix/base/Collection.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// One pair. Nothing is validated; FieldName becomes an element name when the form is sent.
class QUORIX_API cSearchField {
public:
    cSearchField() = default;
    cSearchField(StringView name, StringView data) : name_(name), data_(data) {}

    String FieldName() const { return name_; }
    void FieldName(StringView value) { name_ = value; }

    String FieldData() const { return data_; }
    void FieldData(StringView value) { data_ = value; }

private:
    String name_;
    String data_;
};

/// Positions count from 1. Errors: 9 for a position outside, 5 for an unknown key.
class QUORIX_API cSearchFields {
public:
    using Items = Collection<std::shared_ptr<cSearchField>>;

    /// Appends a new field, with a key unless `key` is empty. Error 457 when the key is in use.
    std::shared_ptr<cSearchField> Add(StringView name, StringView data, StringView key = {});

    std::shared_ptr<cSearchField> Item(std::int32_t index) const { return items_.Item(index); }
    std::shared_ptr<cSearchField> Item(StringView key) const { return items_.Item(key); }
    std::int32_t Count() const { return items_.Count(); }
    void Remove(std::int32_t index) { items_.Remove(index); }
    void Remove(StringView key) { items_.Remove(key); }
    void Clear() { items_.Clear(); }

    Items::const_iterator begin() const { return items_.begin(); }
    Items::const_iterator end() const { return items_.end(); }

private:
    Items items_;
};

}  // namespace quorix
