// The ordered, 1-based collection of the automation world, optionally keyed by string.
//
// Keys are compared exactly; an empty string given as key is a key. A look-up by key does not scan.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "quorix/base/AutomationError.h"
#include "quorix/base/String.h"

namespace quorix {

template <class T>
class Collection {
public:
    using const_iterator = typename std::vector<T>::const_iterator;

    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }

    // Appends `item`. Error 457 when `key` is in use; the collection is then unchanged.
    void Add(T item) {
        items_.push_back(std::move(item));
        keys_.emplace_back();
    }
    void Add(T item, StringView key) {
        if (!byKey_.try_emplace(String(key), items_.size()).second) throw AutomationError(ERR_KeyInUse);
        items_.push_back(std::move(item));
        keys_.emplace_back(key);
    }

    // 1 to Count; error 9 outside. Error 5 for an unknown key.
    const T& Item(std::int32_t index) const { return items_[Position(index)]; }
    const T& Item(StringView key) const { return items_[Position(key)]; }
    bool HasKey(StringView key) const { return byKey_.find(key) != byKey_.end(); }

    void Remove(std::int32_t index) { Erase(Position(index)); }
    void Remove(StringView key) { Erase(Position(key)); }
    void Clear() {
        items_.clear();
        keys_.clear();
        byKey_.clear();
    }

    // Puts `item` in the place of another, which keeps its key. Error 9 outside 1 to Count.
    void Replace(std::int32_t index, T item) { items_[Position(index)] = std::move(item); }

    const_iterator begin() const { return items_.begin(); }
    const_iterator end() const { return items_.end(); }

private:
    std::size_t Position(std::int32_t index) const {
        if (index < 1 || index > Count()) throw AutomationError(ERR_Subscript);
        return static_cast<std::size_t>(index) - 1;
    }

    std::size_t Position(StringView key) const {
        auto found = byKey_.find(key);
        if (found == byKey_.end()) throw AutomationError(ERR_InvalidCall);
        return found->second;
    }

    void Erase(std::size_t position) {
        if (keys_[position]) byKey_.erase(*keys_[position]);
        for (std::size_t i = position + 1; i < keys_.size() && !byKey_.empty(); ++i) {
            if (keys_[i]) --byKey_.find(*keys_[i])->second;
        }
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position));
        keys_.erase(keys_.begin() + static_cast<std::ptrdiff_t>(position));
    }

    std::vector<T> items_;
    std::vector<std::optional<String>> keys_;
    std::map<String, std::size_t, std::less<>> byKey_;
};

}  // namespace quorix
