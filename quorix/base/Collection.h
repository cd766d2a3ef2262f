/// \class quorix::Collection
/// The ordered, 1-based collection of the automation world, optionally keyed by string.
///
/// Keys are compared exactly; an empty string given as key is a key. Nothing here scans: adding, removing and
/// finding by index or key take logarithmic time.
///
/// The library has collections of text and of its own records; there are no others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>

#include "quorix/base/AutomationError.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// When an element arrived: greater than that of every element before it, and never used again.
using Sequence = std::uint64_t;

template <class T>
class QUORIX_API Collection {
public:
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        reference operator*() const { return *item_; }
        pointer operator->() const { return item_; }
        const_iterator& operator++() { return *this = of_->After(sequence_); }
        const_iterator operator++(int) {
            const_iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const const_iterator& other) const { return sequence_ == other.sequence_; }

    private:
        friend class Collection;

        const Collection* of_ = nullptr;
        Sequence sequence_ = 0;  // 0 at the end
        const T* item_ = nullptr;
    };

    Collection();
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;
    virtual ~Collection();

    std::int32_t Count() const;

    /// Appends `item`. Error 457 when `key` is in use; the collection is then unchanged.
    void Add(T item);
    void Add(T item, StringView key);

    /// 1 to Count; error 9 outside. Error 5 for an unknown key.
    const T& Item(std::int32_t index) const { return At(SequenceOf(index)); }
    const T& Item(StringView key) const { return At(SequenceOf(key)); }
    bool HasKey(StringView key) const;

    void Remove(std::int32_t index) { Erase(SequenceOf(index)); }
    void Remove(StringView key) { Erase(SequenceOf(key)); }
    void Clear();

    /// Puts `item` in the place of another, which keeps its key. Error 9 outside 1 to Count.
    void Replace(std::int32_t index, T item);

    const_iterator begin() const { return After(0); }
    const_iterator end() const { return {}; }

protected:
    /// For a collection that finds its elements by more than index and key. What throws has changed nothing.
    virtual void Entered(Sequence, const T&) {}
    virtual void Leaving(Sequence, const T&) {}

    const T& At(Sequence sequence) const;

    /// The index that `sequence` has now; for one that is gone, the index of what came after it.
    std::int32_t IndexOf(Sequence sequence) const;

    Sequence SequenceOf(std::int32_t index) const;
    Sequence SequenceOf(StringView key) const;

private:
    struct QUORIX_LOCAL Elements;  // see CollectionElements.h

    // The first element that came after `sequence`.
    const_iterator After(Sequence sequence) const;
    void Append(T item, const String* key);
    void Erase(Sequence sequence);

    std::unique_ptr<Elements> elements_;
};

}  // namespace quorix
