/// \file
/// BDictionaryItemBase: the base of a BDictionary's items. Its one virtual operation gives the
/// hash of the item's key, so that a table reaches the hash through the item and a key type
/// needs nothing of its own. The hashes of the library's key types live here.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>
#include <qv/core/SP.h>

class WString;
class BString;

/// An interface without data. The hashes are fixed, since they decide the order in which a
/// table's items are iterated; all arithmetic is unsigned 64-bit and wraps. Pure functions:
/// any thread may call them.
class QV_EXPORT BDictionaryItemBase {
public:
    /// The hash of the item's key.
    virtual unsigned long long Hash() const = 0;

    /// The first 8 units at most, up to the terminator: h = h * 5 + unit, from 0. Keys that
    /// share those units share a bucket.
    static unsigned long long HashKey(WString const& key);
    /// The first 5 characters at most, up to the terminator, each taken as a signed byte:
    /// h = h * 33 + character, from 0.
    static unsigned long long HashKey(BString const& key);
    /// Of the whole key, agreeing with WString's equality (the locale rule): keys it calls equal
    /// hash alike.
    static unsigned long long FullHashKey(WString const& key);
    /// The object's address (0 for null): SP keys are equal by identity.
    template <class T>
    static unsigned long long HashKey(SP<T> const& key) {
        return reinterpret_cast<std::uintptr_t>(key.get());
    }

protected:
    BDictionaryItemBase() = default;
    BDictionaryItemBase(BDictionaryItemBase const&) = default;
    BDictionaryItemBase& operator=(BDictionaryItemBase const&) = default;
    ~BDictionaryItemBase() = default;
};
