// BDictionary<K, V>: a key/value table on BHashTable. Keys compare with their own operator==
// (the locale rule for WString, exact bytes for BString, identity for SP) and hash through
// BDictionaryItemBase::HashKey. Iteration yields MItem in bucket order.
#pragma once

#include <qv/core/containers/BDictionaryItemBase.h>
#include <qv/core/containers/BHashTable.h>

template <class K, class V>
class BDictionary;

// The stored pair. Lookups build one holding the key and an empty value.
template <class K, class V>
class BDictionaryItem : public BDictionaryItemBase {
public:
    BDictionaryItem() = default;
    BDictionaryItem(K const& key, V const& value) : m_key(key), m_value(value) {}
    unsigned long long Hash() const override { return HashKey(m_key); }
    // A hash of the whole key, where the key type has one that agrees with its equality: the
    // table then finds items through its index instead of scanning the bucket.
    unsigned long long FullHash() const requires requires(K const& key) {
        BDictionaryItemBase::FullHashKey(key);
    }
    { return FullHashKey(m_key); }
    bool SameKey(BDictionaryItem const& other) const {
        // The strings' Equal is their operator==; called by name, it avoids the reversed
        // operator candidates that C++20 compilers weigh for a member operator== of a base.
        if constexpr (requires { m_key.Equal(other.m_key); })
            return m_key.Equal(other.m_key);
        else
            return m_key == other.m_key;
    }

    K m_key{};
    V m_value{};
};

template <class K, class V>
class BDictionary : public BHashTable<BDictionaryItem<K, V>> {
    using Base = BHashTable<BDictionaryItem<K, V>>;

public:
    using MItem = BDictionaryItem<K, V>;
    using Base::Base;
    using Base::Contains;
    using Base::Find;
    using Base::Remove;
    using Base::Set;

    bool Set(K const& key, V const& value) { return Base::Set(MItem(key, value)); }
    MItem* Find(K const& key) { return Base::Find(MItem(key, V())); }
    MItem const* Find(K const& key) const { return Base::Find(MItem(key, V())); }
    bool Contains(K const& key) const { return Find(key) != nullptr; }
    bool Remove(K const& key) { return Base::Remove(MItem(key, V())); }
};
