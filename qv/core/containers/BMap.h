// BMap<K, V>: a small table of key/value pairs in insertion order, searched from the front.
// It suits the handful of entries it serves (status texts of an operation); removing keeps
// the order of the others.
#pragma once

#include <qv/core/containers/BArray.h>

template <class K, class V>
class BMap {
public:
    struct MItem {
        K m_key{};
        V m_value{};
    };
    static constexpr unsigned long long kNotFound = ~0ull;

    explicit BMap(unsigned long long step = 1) : m_items(step) {}

    // Overwrites the value of an existing key, or adds the pair at the end.
    void Set(K const& key, V const& value) {
        unsigned long long i = Find(key);
        if (i != kNotFound)
            m_items[i].m_value = value;
        else
            m_items.Add(MItem{key, value});
    }
    // The index of the key, or kNotFound.
    unsigned long long Find(K const& key) const {
        for (unsigned long long i = 0; i < m_items.Count(); ++i)
            if (m_items[i].m_key == key)
                return i;
        return kNotFound;
    }
    void RemoveAt(unsigned long long index, unsigned long long n = 1) {
        m_items.RemoveAt(index, n);
    }

    unsigned long long Count() const { return m_items.Count(); }
    MItem& operator[](unsigned long long i) { return m_items[i]; }
    MItem const& operator[](unsigned long long i) const { return m_items[i]; }
    BArray<MItem> const& Items() const { return m_items; }

    MItem* begin() { return m_items.begin(); }
    MItem* end() { return m_items.end(); }
    MItem const* begin() const { return m_items.begin(); }
    MItem const* end() const { return m_items.end(); }

private:
    BArray<MItem> m_items;
};
