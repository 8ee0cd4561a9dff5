/// \file
/// BMap<K, V>: a small table of key/value pairs in insertion order, searched from the front.
/// It suits the handful of entries it serves (status texts of an operation); removing keeps
/// the order of the others.
#pragma once

#include <qv/core/containers/BArray.h>

/// Storage only: no lock, no reports; one thread at a time, or the owner keeps access apart.
/// Keys compare with K's operator==. A failed allocation (std::bad_alloc) propagates.
template <class K, class V>
class BMap {
public:
    /// One pair, read and written directly.
    struct MItem {
        K m_key{};
        V m_value{};
    };
    /// The answer of Find for a key that is not there.
    static constexpr unsigned long long kNotFound = ~0ull;

    /// Empty; \p step is the least growth of the pair array.
    explicit BMap(unsigned long long step = 1) : m_items(step) {}

    /// Overwrites the value of an existing key, or adds the pair at the end.
    void Set(K const& key, V const& value) {
        unsigned long long i = Find(key);
        if (i != kNotFound)
            m_items[i].m_value = value;
        else
            m_items.Add(MItem{key, value});
    }
    /// The index of the first pair with the key, or kNotFound.
    unsigned long long Find(K const& key) const {
        for (unsigned long long i = 0; i < m_items.Count(); ++i)
            if (m_items[i].m_key == key)
                return i;
        return kNotFound;
    }
    /// Removes \p n pairs at \p index, as BArray::RemoveAt: the others keep their order, an
    /// index past the end is ignored.
    void RemoveAt(unsigned long long index, unsigned long long n = 1) {
        m_items.RemoveAt(index, n);
    }

    /// The number of pairs.
    unsigned long long Count() const { return m_items.Count(); }
    /// @name Pair \p i, unchecked; a reference holds until the next Set or RemoveAt.
    ///@{
    MItem& operator[](unsigned long long i) { return m_items[i]; }
    MItem const& operator[](unsigned long long i) const { return m_items[i]; }
    ///@}
    /// The pairs as an array, borrowed.
    BArray<MItem> const& Items() const { return m_items; }

    /// @name Range-for over the pairs in insertion order.
    ///@{
    MItem* begin() { return m_items.begin(); }
    MItem* end() { return m_items.end(); }
    MItem const* begin() const { return m_items.begin(); }
    MItem const* end() const { return m_items.end(); }
    ///@}

private:
    BArray<MItem> m_items;
};
