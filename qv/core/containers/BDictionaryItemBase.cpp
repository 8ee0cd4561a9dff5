#include <qv/core/containers/BDictionaryItemBase.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/TextHash.h>

// All arithmetic is unsigned 64-bit and wraps.
unsigned long long BDictionaryItemBase::HashKey(WString const& key) {
    std::uint64_t h = 0;
    char16_t const* p = key.CStr();
    for (int i = 0; i < 8 && p[i]; ++i)
        h = h * 5 + p[i];
    return h;
}

unsigned long long BDictionaryItemBase::HashKey(BString const& key) {
    std::uint64_t h = 0;
    char const* p = key.CStr();
    for (int i = 0; i < 5 && p[i]; ++i)
        h = h * 33 +
            static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<signed char>(p[i])));
    return h;
}

unsigned long long BDictionaryItemBase::FullHashKey(WString const& key) {
    return qv::platform::HashForCmpW(key.CStr());
}
