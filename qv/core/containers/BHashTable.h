/// \file
/// BHashTable<Item>: a chained hash table whose buckets are BArrays. The bucket count is fixed
/// at construction from the expected number of items and never changes: there is no rehashing.
///
/// Iteration runs bucket by bucket and, within a bucket, in the order of addition. Callers can
/// see that order, so the bucket arithmetic below is kept exactly as it has always been: a table
/// of 1000 expected items has 37 buckets, one of 250000 has 9277.
///
/// Item provides `unsigned long long Hash() const` and `bool SameKey(Item const&) const`. An item
/// may also provide `unsigned long long FullHash() const`, a hash of its whole key on which
/// items with the same key agree. Such items are found through an index beside the buckets
/// (full hash to the item's place), so a lookup costs the same however many items share a
/// bucket: the bucket hash reads only a prefix of the key, and keys with a common prefix all
/// land in one bucket. The index changes no result: buckets, their order and what a lookup finds
/// are those of the plain scan.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <iterator>
#include <memory>
#include <qv/core/containers/BArray.h>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

/// Storage only: no lock, no reports; one thread at a time, or the owner keeps access apart.
/// A failed allocation (std::bad_alloc) propagates. Pointers and iterators into the table hold
/// until the next Set or Remove; removing while iterating is not offered: collect the keys
/// first.
template <class Item>
class BHashTable {
public:
    /// A place in the table: the table, a bucket index and an item index. The end is reached
    /// when the bucket index reaches the bucket count.
    template <class V>
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = V*;
        using reference = V&;

        Iterator() = default;
        V& operator*() const { return m_table->m_buckets[m_bucket][m_item]; }
        V* operator->() const { return &**this; }
        Iterator& operator++() {
            ++m_item;
            SkipEmpty();
            return *this;
        }
        Iterator operator++(int) {
            Iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(Iterator const& other) const = default;
        /// True past the last item.
        bool AtEnd() const { return m_bucket >= m_table->m_bucket_count; }

    private:
        friend class BHashTable;
        Iterator(BHashTable const* table, std::uint64_t bucket) : m_table(table), m_bucket(bucket) {
            SkipEmpty();
        }
        // Moves on to the next item that exists, bucket by bucket.
        void SkipEmpty() {
            while (m_bucket < m_table->m_bucket_count &&
                   m_item >= m_table->m_buckets[m_bucket].Count()) {
                ++m_bucket;
                m_item = 0;
            }
        }
        BHashTable const* m_table = nullptr;
        std::uint64_t m_bucket = 0;
        std::uint64_t m_item = 0;
    };
    using iterator = Iterator<Item>;
    using const_iterator = Iterator<Item const>;

    /// An empty table sized for \p expected items: BucketCountFor(expected) buckets, each
    /// growing by StepFor(expected).
    explicit BHashTable(unsigned long long expected = 0)
        : m_bucket_count(BucketCountFor(expected)),
          m_buckets(MakeBuckets(m_bucket_count, StepFor(expected))) {
        if constexpr (kIndexed)
            m_index.serials.resize(m_bucket_count);
    }
    /// @name Copies: the same bucket count, every bucket copied with its step and its order.
    ///@{
    BHashTable(BHashTable const& other)
        : m_bucket_count(other.m_bucket_count), m_item_count(other.m_item_count),
          m_buckets(MakeBuckets(m_bucket_count, 0, other.m_buckets)), m_index(other.m_index) {}
    BHashTable& operator=(BHashTable const& other) {
        BHashTable copy(other);
        std::swap(m_bucket_count, copy.m_bucket_count);
        std::swap(m_item_count, copy.m_item_count);
        std::swap(m_buckets, copy.m_buckets);
        std::swap(m_index, copy.m_index);
        return *this;
    }
    ///@}
    virtual ~BHashTable() { delete[] m_buckets; }

    /// Stores \p item. An item with an equal key is overwritten (key and value) and the result
    /// is false; otherwise the item is added to the end of its bucket and the result is true.
    bool Set(Item const& item) {
        std::uint64_t const b = BucketIndex(item);
        if (Item* found = At(b, Locate(b, item).item)) {
            *found = item;
            return false;
        }
        m_buckets[b].Add(item);
        if constexpr (kIndexed) {
            m_index.serials[b].push_back(m_index.next);
            m_index.places.emplace(item.FullHash(), Place{b, m_index.next++});
        }
        ++m_item_count;
        return true;
    }
    /// @name The stored item with the probe's key, or null; a const table hands out const items.
    ///@{
    Item* Find(Item const& probe) {
        std::uint64_t const b = BucketIndex(probe);
        return At(b, Locate(b, probe).item);
    }
    Item const* Find(Item const& probe) const {
        std::uint64_t const b = BucketIndex(probe);
        return At(b, Locate(b, probe).item);
    }
    ///@}
    /// True when an item with the probe's key is stored.
    bool Contains(Item const& probe) const { return Find(probe) != nullptr; }
    /// Removes the item with the probe's key; the items behind it in its bucket keep their
    /// order. False when there is none.
    bool Remove(Item const& probe) {
        std::uint64_t const b = BucketIndex(probe);
        Location const found = Locate(b, probe);
        if (found.item == kNone)
            return false;
        m_buckets[b].RemoveAt(found.item, 1);
        if constexpr (kIndexed) {
            auto& serials = m_index.serials[b];
            serials.erase(serials.begin() + static_cast<std::ptrdiff_t>(found.item));
            m_index.places.erase(found.place);
        }
        --m_item_count;
        return true;
    }

    /// @name Figures: the items stored, the fixed number of buckets.
    ///@{
    unsigned long long Count() const { return m_item_count; }
    unsigned long long BucketCount() const { return m_bucket_count; }
    ///@}
    /// The items of bucket \p index, in the order of addition; the index is not checked.
    BArray<Item> const& Bucket(unsigned long long index) const { return m_buckets[index]; }

    /// @name Range-for over all items, bucket by bucket.
    ///@{
    iterator begin() { return iterator(this, 0); }
    iterator end() { return iterator(this, m_bucket_count); }
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, m_bucket_count); }
    ///@}

    /// The growth step of each bucket: 30 for tables expecting more than 249 items, else 15.
    static unsigned long long StepFor(unsigned long long expected) {
        return expected > 249 ? 30 : 15;
    }
    /// Sized so that a bucket holds about step x 0.9 items at the expected count: 2 up to 50
    /// expected items, otherwise the truncated quotient, computed in single precision as it
    /// always was, raised to the first odd prime not below it (2 when the quotient is 2 or
    /// less).
    static unsigned long long BucketCountFor(unsigned long long expected);

private:
    static constexpr bool kIndexed = requires(Item const& item) {
        { item.FullHash() } -> std::convertible_to<unsigned long long>;
    };
    static constexpr std::uint64_t kNone = ~std::uint64_t{0};

    // Where an item stands: its bucket and its serial number, which grows with every addition.
    // A bucket's items stand in the order of their serials, so the position of an item in its
    // bucket is the rank of its serial there, however many items before it were removed.
    struct Place {
        std::uint64_t bucket;
        std::uint64_t serial;
    };
    struct Index {
        std::unordered_multimap<std::uint64_t, Place> places; // by full hash
        std::vector<std::vector<std::uint64_t>> serials;      // per bucket, ascending
        std::uint64_t next = 0;
    };
    struct NoIndex {
        using const_iterator = int;
    };
    using IndexType = std::conditional_t<kIndexed, Index, NoIndex>;
    struct Location {
        std::uint64_t item = kNone; // position in the bucket, or kNone
        typename std::conditional_t<kIndexed, std::unordered_multimap<std::uint64_t, Place>,
                                    NoIndex>::const_iterator place{};
    };

    // The first item of bucket b with the probe's key, as a scan of the bucket finds it. With
    // the index, only the items whose full hash matches are compared; of those that have the
    // key, the one standing first wins, as in the scan.
    Location Locate(std::uint64_t b, Item const& probe) const {
        BArray<Item> const& bucket = m_buckets[b];
        Location found;
        if constexpr (kIndexed) {
            auto const& serials = m_index.serials[b];
            auto [it, end] = m_index.places.equal_range(probe.FullHash());
            for (; it != end; ++it) {
                if (it->second.bucket != b)
                    continue;
                auto const at = static_cast<std::uint64_t>(
                    std::lower_bound(serials.begin(), serials.end(), it->second.serial) -
                    serials.begin());
                if (at < found.item && bucket[at].SameKey(probe))
                    found = Location{at, it};
            }
        } else {
            for (std::uint64_t i = 0; i < bucket.Count(); ++i)
                if (bucket[i].SameKey(probe))
                    return Location{i};
        }
        return found;
    }
    Item* At(std::uint64_t b, std::uint64_t item) const {
        return item == kNone ? nullptr : &m_buckets[b][item];
    }

    // Empty buckets with the given step, or copies of the source's buckets.
    static BArray<Item>* MakeBuckets(std::uint64_t count, std::uint64_t step,
                                     BArray<Item> const* source = nullptr) {
        std::unique_ptr<BArray<Item>[]> buckets(new BArray<Item>[count]);
        for (std::uint64_t i = 0; i < count; ++i) {
            buckets[i].SetStep(source ? source[i].Step() : step);
            if (source)
                buckets[i] = source[i];
        }
        return buckets.release();
    }
    std::uint64_t BucketIndex(Item const& item) const { return item.Hash() % m_bucket_count; }
    static bool IsOddPrime(std::uint64_t n) {
        for (std::uint64_t d = 3; d <= n / d; d += 2)
            if (n % d == 0)
                return false;
        return true;
    }

    std::uint64_t m_bucket_count;
    std::uint64_t m_item_count = 0;
    BArray<Item>* m_buckets;
    [[no_unique_address]] IndexType m_index;
};

template <class Item>
unsigned long long BHashTable<Item>::BucketCountFor(unsigned long long expected) {
    if (expected <= 50)
        return 2;
    float per_bucket = static_cast<float>(StepFor(expected)) * 0.9f;
    auto n = static_cast<std::uint64_t>(static_cast<float>(expected) / per_bucket);
    if (n <= 2)
        return 2;
    if (n % 2 == 0)
        ++n;
    while (!IsOddPrime(n))
        n += 2;
    return n;
}
