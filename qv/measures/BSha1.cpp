// Both forms compute through the working class SHA1 with the fastest block compression that
// the processor runs (qv/measures/private/SHA1.h).
#include "qv/measures/private/SHA1.h"

#include <qv/core/Narrowing.h>
#include <qv/measures/BSha1.h>

namespace Crypt {

bool BSha1::Encrypt(void* data, unsigned long long size, Result& digest) {
    if (!data)
        return false;
    qv::detail::SHA1 sha;
    sha.Input(data, Sizet_uint(size));
    return sha.Result(digest.m_h);
}

bool BSha1::Encrypt(void* data, unsigned long long size, WString& digest) {
    digest = WString();
    Result words;
    if (!Encrypt(data, size, words))
        return false;
    digest.Printf(u"%08x%08x%08x%08x%08x", words.m_h[0], words.m_h[1], words.m_h[2], words.m_h[3],
                  words.m_h[4]);
    return true;
}

} // namespace Crypt
