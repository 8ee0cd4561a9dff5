// SHA1: the working state of one SHA-1 digest, fed in pieces. Crypt::BSha1 uses it; the
// compression of 64-byte blocks is chosen once per process: the processor's SHA instructions
// where it has them, a portable loop otherwise. Both are exported for the tests, which check
// each on the same vectors.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::detail {

// Runs the compression over count consecutive 64-byte blocks, updating the five words.
using Sha1Compress = void (*)(std::uint32_t* words, unsigned char const* blocks, std::size_t count);

void Sha1CompressPortable(std::uint32_t* words, unsigned char const* blocks,
                                    std::size_t count);
// The compression with the SHA instructions, or null where the processor lacks them.
Sha1Compress Sha1CompressShaInstructions();
// The fastest compression this processor runs.
Sha1Compress Sha1CompressBest();

class SHA1 {
public:
    explicit SHA1(Sha1Compress compress = Sha1CompressBest());
    // Continues a digest whose first lengthBits bits (whole blocks) were hashed elsewhere and
    // left these words.
    SHA1(std::uint32_t const (&words)[5], std::uint64_t lengthBits,
         Sha1Compress compress = Sha1CompressBest());

    // Adds bytes. False, and nothing added, once the digest is computed or the length has
    // overflowed its 64 bits.
    bool Input(void const* data, std::size_t size);
    // Pads, finishes and gives the five words H0 to H4. False if the length overflowed; the
    // digest is then meaningless and the words are not written.
    bool Result(std::uint32_t (&words)[5]);
    bool LengthOverflowed() const { return m_overflowed; }

private:
    void AddLength(std::size_t bytes);

    std::uint32_t m_h[5];
    std::uint32_t m_lengthLow = 0;
    std::uint32_t m_lengthHigh = 0;
    unsigned char m_block[64];
    std::size_t m_fill = 0;
    bool m_computed = false;
    bool m_overflowed = false;
    Sha1Compress m_compress;
};

} // namespace qv::detail
