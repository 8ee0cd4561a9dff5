#include "persistence/ArchiveFiles.h"
#include "persistence/MemoryArchive.h"

#include <gtest/gtest.h>
#include <qv/measures/BBitArray.h>
#include <string>

namespace {

using archive_files::Le32;

// The stored form of an array, which is its data after the three sizes.
std::string Stored(BBitArray const& a) {
    MemoryArchive out({}, BArchive::WRITE);
    a.WriteData(out);
    return out.Bytes();
}

// The pixels of a plane as text, row by row, for readable failures.
std::string Picture(BBitArray const& a, int plane) {
    std::string s;
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x)
            s += a.TestBit(x, y, plane) ? '#' : '.';
        s += '/';
    }
    return s;
}

// A 4 by 4 array with plane 0 set on the diagonal and at (3, 0), plane 9 at (1, 2).
BBitArray Sample() {
    BBitArray a(10, 4, 4);
    for (int i = 0; i < 4; ++i)
        a.SetBit(i, i, 0);
    a.SetBit(3, 0, 0);
    a.SetBit(1, 2, 9);
    return a;
}

TEST(BitArray, SizesAndLayout) {
    BBitArray nine(9, 2, 2);
    EXPECT_EQ(nine.Planes(), 16) << "9 planes take two bytes";
    nine.SetBit(1, 1, 8);
    EXPECT_EQ(Stored(nine), Le32(2) + Le32(2) + Le32(2) + std::string(7, '\0') + "\x01")
        << "row by row; plane 8 is bit 0 of the pixel's second byte";
    BBitArray const negative(8, -2, 3);
    EXPECT_EQ(negative.Size(), -6);
    EXPECT_EQ(Stored(negative), Le32(-2u) + Le32(3) + Le32(1)) << "no pixels, no memory";
}

TEST(BitArray, SingleBitsLeaveTheirNeighbours) {
    BBitArray a(16, 3, 3);
    a.SetAllBits();
    a.UnsetBit(1, 1, 10);
    EXPECT_EQ(a.CountBits(10), 8u);
    a.ChangeBit(0, 2, 15, false);
    EXPECT_EQ(Picture(a, 9) + Picture(a, 10) + Picture(a, 11) + Picture(a, 15),
              "###/###/###/###/#.#/###/###/###/###/###/###/.##/");
    a.UnsetAllBits();
    EXPECT_EQ(Stored(a).substr(12), std::string(18, '\0'));
}

TEST(BitArray, WholePlanes) {
    // One byte to a pixel, in 8-byte words and a tail, and several bytes to a pixel.
    struct Case {
        char const* name;
        int planes, width, height, plane;
    } const cases[] = {
        {"one byte, words and a tail", 1, 13, 7, 0},
        {"three bytes", 24, 7, 1, 17},
    };
    for (auto const& c : cases) {
        BBitArray a(c.planes, c.width, c.height);
        // A scatter of bits of the plane and of its neighbour, set one by one.
        unsigned long long want = 0;
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x) {
                if ((x * 7 + y * 3) % 5 == 0) {
                    a.SetBit(x, y, c.plane);
                    ++want;
                }
                if ((x + y) % 2 == 0)
                    a.SetBit(x, y, c.plane ^ 1);
            }
        EXPECT_EQ(a.CountBits(c.plane), want) << c.name;
        BBitArray b = a;
        b.ChangePlane(c.plane, true);
        EXPECT_EQ(b.CountBits(c.plane), static_cast<unsigned long long>(a.Size())) << c.name;
        b.ChangePlane(c.plane, false);
        EXPECT_EQ(b.CountBits(c.plane), 0u) << c.name;
        EXPECT_EQ(Picture(b, c.plane ^ 1), Picture(a, c.plane ^ 1)) << c.name;
    }
    // More than 255 words, where the byte lanes are summed.
    BBitArray big(1, 4096, 3000);
    big.SetAllBits();
    EXPECT_EQ(big.CountBits(0), 4096ull * 3000);
}

TEST(BitArray, ChangeExtent) {
    struct Case {
        char const* name;
        int x, y, width, height;
        char const* want;
    } const cases[] = {
        {"extend all round", -1, -1, 6, 6, "....../.#..#./..#.../...#../....#./....../"},
        {"partly outside", 2, -1, 3, 3, ".../.#./.../"},
        {"to nothing", 1, 1, 0, 3, "///"},
    };
    for (auto const& c : cases) {
        BBitArray a = Sample();
        a.ChangeExtent(c.x, c.y, c.width, c.height);
        EXPECT_EQ(Picture(a, 0), c.want) << c.name; // the picture shows the new extent too
    }
    BBitArray a = Sample();
    a.ChangeExtent(1, 1, 3, 3);
    EXPECT_TRUE(a.TestBit(0, 1, 9)) << "the other planes move along";
}

TEST(BitArray, StoredFormLoadsWholeOrNotAtAll) {
    std::string const whole = Stored(Sample());
    struct Case {
        char const* name;
        std::string bytes;
        bool loads;
    } const cases[] = {
        {"whole", whole, true},
        {"truncated data", whole.substr(0, whole.size() - 1), false},
        {"huge sizes, little data", Le32(100000) + Le32(100000) + Le32(1) + std::string(64, 'x'),
         false},
    };
    for (auto const& c : cases) {
        MemoryArchive in(c.bytes);
        SP<BSmartObj> loaded = BBitArray::Read(in, 0);
        ASSERT_EQ(loaded != nullptr, c.loads) << c.name;
        if (loaded) {
            EXPECT_EQ(Stored(*SP<BBitArray>(loaded)), whole) << c.name;
        }
    }
}

} // namespace
