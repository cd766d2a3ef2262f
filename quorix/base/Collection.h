/// \class quorix::Collection
/// The ordered, 1-based collection of the automation world, optionally keyed by string.
///
/// Keys are compared exactly; an empty string given as key is a key. Nothing here scans: adding, removing and
/// finding by index or key take logarithmic time.
#pragma once

#include <cstddef>
#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>
#include <functional>
#include <iterator>
#include <map>
#include <utility>

#include "quorix/base/AutomationError.h"
#include "quorix/base/String.h"

namespace quorix {

/// When an element arrived: greater than that of every element before it, and never used again.
using Sequence = std::uint64_t;

template <class T>
class Collection {
    struct Element {
        T item;
        const String* key = nullptr;  // which stands in byKey_
    };
    // A tree that counts its nodes, so that positions need no walk and removing moves nothing.
    using Elements =
        __gnu_pbds::tree<Sequence, Element, std::less<Sequence>, __gnu_pbds::rb_tree_tag,  // NOLINT
                         __gnu_pbds::tree_order_statistics_node_update>;

public:
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        explicit const_iterator(typename Elements::const_iterator at = {}) : at_(at) {}
        reference operator*() const { return at_->second.item; }
        pointer operator->() const { return &at_->second.item; }
        const_iterator& operator++() {
            ++at_;
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator before = *this;
            ++at_;
            return before;
        }
        bool operator==(const const_iterator& other) const { return at_ == other.at_; }

    private:
        typename Elements::const_iterator at_;
    };

    Collection() = default;
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;
    virtual ~Collection() = default;

    std::int32_t Count() const { return static_cast<std::int32_t>(elements_.size()); }

    /// Appends `item`. Error 457 when `key` is in use; the collection is then unchanged.
    void Add(T item) { Append({std::move(item)}); }
    void Add(T item, StringView key) {
        auto [made, isNew] = byKey_.try_emplace(String(key), next_);
        if (!isNew) throw AutomationError(ERR_KeyInUse);
        try {
            Append({std::move(item), &made->first});
        } catch (...) {
            byKey_.erase(made);
            throw;
        }
    }

    /// 1 to Count; error 9 outside. Error 5 for an unknown key.
    const T& Item(std::int32_t index) const { return At(SequenceOf(index)); }
    const T& Item(StringView key) const { return At(SequenceOf(key)); }
    bool HasKey(StringView key) const { return byKey_.find(key) != byKey_.end(); }

    void Remove(std::int32_t index) { Erase(SequenceOf(index)); }
    void Remove(StringView key) { Erase(SequenceOf(key)); }
    void Clear() {
        while (!elements_.empty()) Erase(elements_.begin()->first);
    }

    /// Puts `item` in the place of another, which keeps its key. Error 9 outside 1 to Count.
    void Replace(std::int32_t index, T item) {
        Sequence sequence = SequenceOf(index);
        T& place = elements_.find(sequence)->second.item;
        Leaving(sequence, place);
        place = std::move(item);
        Entered(sequence, place);
    }

    const_iterator begin() const { return const_iterator(elements_.begin()); }
    const_iterator end() const { return const_iterator(elements_.end()); }

protected:
    /// For a collection that finds its elements by more than index and key. What throws has changed nothing.
    virtual void Entered(Sequence, const T&) {}
    virtual void Leaving(Sequence, const T&) {}

    const T& At(Sequence sequence) const { return elements_.find(sequence)->second.item; }

    /// The index that `sequence` has now; for one that is gone, the index of what came after it.
    std::int32_t IndexOf(Sequence sequence) const {
        return static_cast<std::int32_t>(elements_.order_of_key(sequence)) + 1;
    }

    Sequence SequenceOf(std::int32_t index) const {
        if (index < 1 || index > Count()) throw AutomationError(ERR_Subscript);
        return elements_.find_by_order(static_cast<std::size_t>(index) - 1)->first;
    }

    Sequence SequenceOf(StringView key) const {
        auto found = byKey_.find(key);
        if (found == byKey_.end()) throw AutomationError(ERR_InvalidCall);
        return found->second;
    }

private:
    void Append(Element element) {
        Sequence sequence = next_++;
        auto made = elements_.insert({sequence, std::move(element)}).first;
        try {
            Entered(sequence, made->second.item);
        } catch (...) {
            elements_.erase(made);
            throw;
        }
    }

    void Erase(Sequence sequence) {
        auto found = elements_.find(sequence);
        Leaving(sequence, found->second.item);
        if (found->second.key != nullptr) byKey_.erase(byKey_.find(*found->second.key));
        elements_.erase(found);
    }

    Elements elements_;
    std::map<String, Sequence, std::less<>> byKey_;
    Sequence next_ = 1;
};

}  // namespace quorix
