/// \file
/// The hits of a search.
///
/// Ownership: shared; each reply brings a new collection, so one that an application kept stays as it was.
/// Threads: like the session that filled them.
#pragma once

#include <memory>

#include "quorix/base/Export.h"
#include "quorix/services/cSearchFields.h"

namespace quorix {

/// One hit: the JID found, and what the service says about it.
class QUORIX_API cSearchResult {
public:
    cSearchResult() = default;
    explicit cSearchResult(StringView item) : item_(item) {}

    String SearchItem() const { return item_; }
    void SearchItem(StringView value) { item_ = value; }

    /// Never null.
    const std::shared_ptr<cSearchFields>& Fields() const { return fields_; }

private:
    String item_;
    std::shared_ptr<cSearchFields> fields_ = std::make_shared<cSearchFields>();
};

/// Positions count from 1. Errors: 9 for a position outside, 5 for an unknown key.
class QUORIX_API cSearchResults {
public:
    using Items = Collection<std::shared_ptr<cSearchResult>>;

    /// Appends a new hit, with a key unless `key` is empty. Error 457 when the key is in use.
    std::shared_ptr<cSearchResult> Add(StringView item, StringView key = {});

    std::shared_ptr<cSearchResult> Item(std::int32_t index) const { return items_.Item(index); }
    std::shared_ptr<cSearchResult> Item(StringView key) const { return items_.Item(key); }
    std::int32_t Count() const { return items_.Count(); }
    void Remove(std::int32_t index) { items_.Remove(index); }
    void Remove(StringView key) { items_.Remove(key); }

    Items::const_iterator begin() const { return items_.begin(); }
    Items::const_iterator end() const { return items_.end(); }

private:
    friend class Search;

    Items items_;
};

}  // namespace quorix
