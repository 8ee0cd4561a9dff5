// SHA-1 over 64-byte blocks. Whole blocks of the input are compressed where they lie; only a
// block that straddles two Input calls, and the padding, go through the state's own buffer.
//
// The SHA-instruction path keeps A to D in one register, reversed (A in the highest lane),
// and E in the highest lane of another; each group of four rounds is one sha1rnds4, and the
// message schedule runs three groups ahead of the rounds: sha1msg1, a xor and sha1msg2 build
// W[g + 1] to W[g + 3] from the four registers in turn. A processor without the instructions,
// or another architecture, takes the portable loop, chosen once through cpuid.
#include "qv/measures/private/SHA1.h"

#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#include <immintrin.h>
#define QV_SHA1_X86 1
#endif

namespace qv::detail {

namespace {

constexpr std::uint32_t kInitial[5] = {0x67452301u, 0xEFCDAB89u, 0x98BADCFEu, 0x10325476u,
                                       0xC3D2E1F0u};

constexpr std::uint32_t Rotl(std::uint32_t v, int n) {
    return (v << n) | (v >> (32 - n));
}

std::uint32_t LoadBigEndian(unsigned char const* p) {
    return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
           static_cast<std::uint32_t>(p[2]) << 8 | p[3];
}

#ifdef QV_SHA1_X86

// One group of four rounds g (0 to 19) with the function of its quarter.
#define QV_SHA1_GROUP(g)                                                                           \
    do {                                                                                           \
        if ((g) > 0)                                                                               \
            e[(g) % 2] = _mm_sha1nexte_epu32(e[(g) % 2], msg[(g) % 4]);                            \
        if ((g) >= 3 && (g) <= 18)                                                                 \
            msg[((g) + 1) % 4] = _mm_sha1msg2_epu32(msg[((g) + 1) % 4], msg[(g) % 4]);             \
        e[((g) + 1) % 2] = abcd;                                                                   \
        abcd = _mm_sha1rnds4_epu32(abcd, e[(g) % 2], (g) / 5);                                     \
        if ((g) >= 1 && (g) <= 16)                                                                 \
            msg[((g) + 3) % 4] = _mm_sha1msg1_epu32(msg[((g) + 3) % 4], msg[(g) % 4]);             \
        if ((g) >= 2 && (g) <= 17)                                                                 \
            msg[((g) + 2) % 4] = _mm_xor_si128(msg[((g) + 2) % 4], msg[(g) % 4]);                  \
    } while (false)

__attribute__((target("sha,sse4.1"))) void
CompressShaInstructions(std::uint32_t* words, unsigned char const* blocks, std::size_t count) {
    __m128i const byteSwap = _mm_set_epi64x(0x0001020304050607ll, 0x08090a0b0c0d0e0fll);
    __m128i abcd =
        _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<__m128i const*>(words)), 0x1B);
    __m128i eStart = _mm_set_epi32(static_cast<int>(words[4]), 0, 0, 0);
    for (; count > 0; --count, blocks += 64) {
        __m128i const abcdStart = abcd;
        __m128i msg[4];
        for (int i = 0; i < 4; ++i)
            msg[i] = _mm_shuffle_epi8(
                _mm_loadu_si128(reinterpret_cast<__m128i const*>(blocks + 16 * i)), byteSwap);
        __m128i e[2] = {_mm_add_epi32(eStart, msg[0]), abcd};
        QV_SHA1_GROUP(0);
        QV_SHA1_GROUP(1);
        QV_SHA1_GROUP(2);
        QV_SHA1_GROUP(3);
        QV_SHA1_GROUP(4);
        QV_SHA1_GROUP(5);
        QV_SHA1_GROUP(6);
        QV_SHA1_GROUP(7);
        QV_SHA1_GROUP(8);
        QV_SHA1_GROUP(9);
        QV_SHA1_GROUP(10);
        QV_SHA1_GROUP(11);
        QV_SHA1_GROUP(12);
        QV_SHA1_GROUP(13);
        QV_SHA1_GROUP(14);
        QV_SHA1_GROUP(15);
        QV_SHA1_GROUP(16);
        QV_SHA1_GROUP(17);
        QV_SHA1_GROUP(18);
        QV_SHA1_GROUP(19);
        // e[0] holds A to D before the last group; its rotated A is the round's E.
        eStart = _mm_sha1nexte_epu32(e[0], eStart);
        abcd = _mm_add_epi32(abcd, abcdStart);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(words), _mm_shuffle_epi32(abcd, 0x1B));
    words[4] = static_cast<std::uint32_t>(_mm_extract_epi32(eStart, 3));
}

#undef QV_SHA1_GROUP

bool HasShaInstructions() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d))
        return false;
    bool const ssse3 = c & (1u << 9);
    bool const sse41 = c & (1u << 19);
    if (!__get_cpuid_count(7, 0, &a, &b, &c, &d))
        return false;
    bool const sha = b & (1u << 29);
    return ssse3 && sse41 && sha;
}

#endif

} // namespace

void Sha1CompressPortable(std::uint32_t* words, unsigned char const* blocks, std::size_t count) {
    for (; count > 0; --count, blocks += 64) {
        std::uint32_t w[80];
        for (int t = 0; t < 16; ++t)
            w[t] = LoadBigEndian(blocks + 4 * t);
        for (int t = 16; t < 80; ++t)
            w[t] = Rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
        std::uint32_t a = words[0], b = words[1], c = words[2], d = words[3], e = words[4];
        for (int t = 0; t < 80; ++t) {
            std::uint32_t f, k;
            if (t < 20) {
                f = (b & c) | (~b & d);
                k = 0x5A827999u;
            } else if (t < 40) {
                f = b ^ c ^ d;
                k = 0x6ED9EBA1u;
            } else if (t < 60) {
                f = (b & c) | (b & d) | (c & d);
                k = 0x8F1BBCDCu;
            } else {
                f = b ^ c ^ d;
                k = 0xCA62C1D6u;
            }
            std::uint32_t const temp = Rotl(a, 5) + f + e + k + w[t];
            e = d;
            d = c;
            c = Rotl(b, 30);
            b = a;
            a = temp;
        }
        words[0] += a;
        words[1] += b;
        words[2] += c;
        words[3] += d;
        words[4] += e;
    }
}

Sha1Compress Sha1CompressShaInstructions() {
#ifdef QV_SHA1_X86
    static bool const has = HasShaInstructions();
    return has ? &CompressShaInstructions : nullptr;
#else
    return nullptr;
#endif
}

Sha1Compress Sha1CompressBest() {
    Sha1Compress const sha = Sha1CompressShaInstructions();
    return sha ? sha : &Sha1CompressPortable;
}

SHA1::SHA1(Sha1Compress compress) : m_compress(compress) {
    std::memcpy(m_h, kInitial, sizeof m_h);
}

SHA1::SHA1(std::uint32_t const (&words)[5], std::uint64_t lengthBits, Sha1Compress compress)
    : m_lengthLow(static_cast<std::uint32_t>(lengthBits)),
      m_lengthHigh(static_cast<std::uint32_t>(lengthBits >> 32)), m_compress(compress) {
    std::memcpy(m_h, words, sizeof m_h);
}

void SHA1::AddLength(std::size_t bytes) {
    std::uint64_t const before = (static_cast<std::uint64_t>(m_lengthHigh) << 32) | m_lengthLow;
    std::uint64_t const bits = static_cast<std::uint64_t>(bytes) << 3;
    std::uint64_t const after = before + bits;
    if (after < before || (bytes >> 61) != 0)
        m_overflowed = true;
    m_lengthLow = static_cast<std::uint32_t>(after);
    m_lengthHigh = static_cast<std::uint32_t>(after >> 32);
}

bool SHA1::Input(void const* data, std::size_t size) {
    if (m_computed || m_overflowed)
        return false;
    AddLength(size);
    if (m_overflowed)
        return false;
    auto const* bytes = static_cast<unsigned char const*>(data);
    if (m_fill > 0) {
        std::size_t const take = size < 64 - m_fill ? size : 64 - m_fill;
        std::memcpy(m_block + m_fill, bytes, take);
        m_fill += take;
        bytes += take;
        size -= take;
        if (m_fill < 64)
            return true;
        m_compress(m_h, m_block, 1);
        m_fill = 0;
    }
    std::size_t const whole = size / 64;
    if (whole > 0)
        m_compress(m_h, bytes, whole);
    bytes += whole * 64;
    size -= whole * 64;
    if (size > 0)
        std::memcpy(m_block, bytes, size);
    m_fill = size;
    return true;
}

bool SHA1::Result(std::uint32_t (&words)[5]) {
    if (m_overflowed)
        return false;
    if (!m_computed) {
        // 0x80, zeros up to 56 bytes in the block (in a further block when fewer than 9 bytes
        // are left), then the length in bits, big-endian.
        m_block[m_fill++] = 0x80;
        if (m_fill > 56) {
            std::memset(m_block + m_fill, 0, 64 - m_fill);
            m_compress(m_h, m_block, 1);
            m_fill = 0;
        }
        std::memset(m_block + m_fill, 0, 56 - m_fill);
        std::uint32_t const halves[2] = {m_lengthHigh, m_lengthLow};
        for (int i = 0; i < 8; ++i)
            m_block[56 + i] = static_cast<unsigned char>(halves[i / 4] >> (24 - 8 * (i % 4)));
        m_compress(m_h, m_block, 1);
        m_fill = 0;
        m_computed = true;
    }
    std::memcpy(words, m_h, sizeof m_h);
    return true;
}

} // namespace qv::detail
