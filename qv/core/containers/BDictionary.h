/// \file
/// BDictionary<K, V>: a key/value table on BHashTable. Keys compare with their own operator==
/// (the locale rule for WString, exact bytes for BString, identity for SP) and hash through
/// BDictionaryItemBase::HashKey. Iteration yields MItem in bucket order.
#pragma once

#include <qv/core/containers/BDictionaryItemBase.h>
#include <qv/core/containers/BHashTable.h>

template <class K, class V>
class BDictionary;

/// The stored pair, BDictionary<K, V>::MItem. Lookups build one holding the key and an empty
/// value. Callers read and change m_key and m_value directly; changing the key of a stored
/// item leaves it in the wrong bucket.
template <class K, class V>
class BDictionaryItem : public BDictionaryItemBase {
public:
    BDictionaryItem() = default;
    BDictionaryItem(K const& key, V const& value) : m_key(key), m_value(value) {}
    /// The hash of the key, as BDictionaryItemBase::HashKey gives it for K.
    unsigned long long Hash() const override { return HashKey(m_key); }
    /// A hash of the whole key, where the key type has one that agrees with its equality: the
    /// table then finds items through its index instead of scanning the bucket.
    unsigned long long FullHash() const requires requires(K const& key) {
        BDictionaryItemBase::FullHashKey(key);
    }
    { return FullHashKey(m_key); }
    /// True when the keys are equal by K's operator==.
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

/// Key/value table with a bucket count fixed from the expected count given to the constructor
/// (see BHashTable). No lock: one thread at a time, or the owner keeps access apart. Items are
/// borrowed: a pointer from Find holds until the next Set or Remove on the table.
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

    /// Stores the pair: true when the key is new, false when an equal key was there and key and
    /// value were overwritten.
    bool Set(K const& key, V const& value) { return Base::Set(MItem(key, value)); }
    /// @name The stored item with an equal key, or null.
    ///@{
    MItem* Find(K const& key) { return Base::Find(MItem(key, V())); }
    MItem const* Find(K const& key) const { return Base::Find(MItem(key, V())); }
    ///@}
    /// True when an item with an equal key is stored.
    bool Contains(K const& key) const { return Find(key) != nullptr; }
    /// Removes the item with an equal key; false when there is none.
    bool Remove(K const& key) { return Base::Remove(MItem(key, V())); }
};
