// SHA-1 on the published vectors and around the padding edges, on every block compression
// that this processor runs, and the digest forms of Crypt::BSha1.
#include "qv/measures/private/SHA1.h"

#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/measures/BSha1.h>
#include <string>
#include <vector>

namespace {

using qv::detail::SHA1;
using qv::detail::Sha1Compress;

std::string Hex(std::uint32_t const (&words)[5]) {
    char text[41];
    std::snprintf(text, sizeof text, "%08x%08x%08x%08x%08x", words[0], words[1], words[2], words[3],
                  words[4]);
    return text;
}

struct Engine {
    std::string name;
    Sha1Compress compress;
};

std::vector<Engine> Engines() {
    std::vector<Engine> engines = {{"portable", &qv::detail::Sha1CompressPortable}};
    if (Sha1Compress sha = qv::detail::Sha1CompressShaInstructions())
        engines.push_back({"SHA instructions", sha});
    return engines;
}

std::string Digest(Sha1Compress compress, std::string const& message,
                   std::size_t piece = std::string::npos) {
    SHA1 sha(compress);
    for (std::size_t at = 0; at < message.size(); at += piece)
        sha.Input(message.data() + at, std::min(piece, message.size() - at));
    std::uint32_t words[5];
    EXPECT_TRUE(sha.Result(words));
    return Hex(words);
}

TEST(Sha1, PublishedVectorsOnEveryEngineWholeAndInPieces) {
    struct {
        char const* name;
        std::string message;
        char const* digest;
    } const vectors[] = {
        {"empty", "", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {"abc", "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"a million a", std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
        // The padding edges: it spills into a further block, fills one exactly, or the input
        // ends on a block edge.
        {"55 a", std::string(55, 'a'), "c1c8bbdc22796e28c0e15163d20899b65621d65a"},
        {"56 a", std::string(56, 'a'), "c2db330f6083854c99d4b5bfb6e8f29f201be699"},
        {"64 a", std::string(64, 'a'), "0098ba824b5c16427bd7a1122a5a442a25ec644d"},
    };
    for (auto const& engine : Engines())
        for (auto const& v : vectors)
            for (std::size_t piece :
                 {std::string::npos, std::size_t{1}, std::size_t{63}, std::size_t{65}})
                if (piece != 1 || v.message.size() < 1000) {
                    EXPECT_EQ(Digest(engine.compress, v.message, piece), v.digest)
                        << engine.name << ": " << v.name << " in pieces of " << piece;
                }
}

TEST(Sha1, LengthOverflowIsFlagged) {
    // A digest continued near the end of the 64-bit length: what fits is taken, a byte more
    // is refused and flagged.
    std::uint32_t const start[5] = {1, 2, 3, 4, 5};
    std::uint64_t const nearlyFull = ~std::uint64_t{0} - 511;
    std::string const block(64, 'x');
    std::uint32_t first[5] = {}, again[5] = {0xDEADBEEF};

    SHA1 over(start, nearlyFull);
    EXPECT_TRUE(over.Input(block.data(), 63) && !over.LengthOverflowed());
    EXPECT_FALSE(over.Input(block.data(), 1));
    EXPECT_TRUE(over.LengthOverflowed());
    EXPECT_FALSE(over.Result(again));
    EXPECT_EQ(again[0], 0xDEADBEEFu);

    SHA1 fits(start, nearlyFull - 511);
    EXPECT_TRUE(fits.Input(block.data(), 64) && !fits.LengthOverflowed() && fits.Result(first));
    EXPECT_FALSE(fits.Input("d", 1)) << "a finished digest takes no more input";
    ASSERT_TRUE(fits.Result(again));
    EXPECT_EQ(Hex(first), Hex(again));
}

TEST(Sha1, DigestForms) {
    char abc[] = "abc";
    Crypt::BSha1::Result words{};
    ASSERT_TRUE(Crypt::BSha1::Encrypt(abc, 3, words));
    EXPECT_EQ(Hex(words.m_h), "a9993e364706816aba3e25717850c26c9cd0d89d") << "H0 first, as numbers";

    WString text(u"stale");
    ASSERT_TRUE(Crypt::BSha1::Encrypt(abc, 3, text));
    EXPECT_EQ(text.ToUtf8(), "a9993e364706816aba3e25717850c26c9cd0d89d");

    text = WString(u"stale");
    EXPECT_FALSE(Crypt::BSha1::Encrypt(nullptr, 0, text));
    EXPECT_TRUE(text.IsEmpty());
    words.m_h[0] = 7;
    EXPECT_FALSE(Crypt::BSha1::Encrypt(nullptr, 3, words));
    EXPECT_EQ(words.m_h[0], 7u);

    EXPECT_THROW(Crypt::BSha1::Encrypt(abc, 0x100000000ull, words), BError);
}

} // namespace
