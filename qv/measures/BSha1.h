/// \file
/// Crypt::BSha1: the SHA-1 digest of a memory range, as five words or as 40 hexadecimal
/// digits. Despite the name of its operation, nothing is encrypted and nothing can be
/// decrypted. See docs/measures.md.
#pragma once

#include <cstdint>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <type_traits>

namespace Crypt {

/// Static members only; every operation may run on any number of threads at once.
class QV_EXPORT BSha1 {
public:
    /// The digest: the words H0 to H4 in this order, each in the machine's byte order.
    struct Result {
        std::uint32_t m_h[5];
    };

    /// Computes the digest of size bytes at data. False for null data (also with size 0),
    /// and digest is then untouched. A size above 4294967295 raises BError(32767,
    /// "Sizet_uint"). A valid pointer with size 0 gives the digest of the empty message.
    static bool Encrypt(void* data, unsigned long long size, Result& digest);
    /// The same as 40 lower-case hexadecimal digits, H0 first. digest is emptied first, so it
    /// stays empty for null data.
    static bool Encrypt(void* data, unsigned long long size, WString& digest);
};
static_assert(sizeof(BSha1::Result) == 20 && std::is_trivially_copyable_v<BSha1::Result>);

} // namespace Crypt
