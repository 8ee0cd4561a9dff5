// Bit planes: layout, single bits, whole planes, cropping and extending, and the stored form
// through object archives, in memory and in files.
#include "persistence/ArchiveFiles.h"
#include "persistence/MemoryArchive.h"
#include "platform/FileTestSupport.h"

#include <cstring>
#include <gtest/gtest.h>
#include <qv/measures/BBitArray.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <string>
#include <vector>

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
    struct Case {
        std::string name;
        int planes, width, height;
        int wantPlanes, wantSize;
        std::string stored;
    };
    std::vector<Case> const cases = {
        {"3 planes round to a byte", 3, 4, 2, 8, 8,
         Le32(4) + Le32(2) + Le32(1) + std::string(8, '\0')},
        {"9 planes take two bytes", 9, 1, 1, 16, 1,
         Le32(1) + Le32(1) + Le32(2) + std::string(2, '\0')},
        {"no pixels, no memory", 8, 0, 5, 8, 0, Le32(0) + Le32(5) + Le32(1)},
        {"negative width stored as given", 8, -2, 3, 8, -6, Le32(-2u) + Le32(3) + Le32(1)},
    };
    for (auto const& c : cases) {
        BBitArray const a(c.planes, c.width, c.height);
        EXPECT_EQ(a.Planes(), c.wantPlanes) << c.name;
        EXPECT_EQ(a.Size(), c.wantSize) << c.name;
        EXPECT_EQ(Stored(a), c.stored) << c.name;
    }
    BBitArray nine(9, 2, 1);
    nine.SetBit(1, 0, 8);
    EXPECT_EQ(Stored(nine).substr(12), std::string("\0\0\0\x01", 4))
        << "plane 8 is bit 0 of the pixel's second byte";
    BBitArray three(3, 3, 2);
    three.SetBit(2, 1, 6);
    EXPECT_EQ(static_cast<unsigned char>(Stored(three)[12 + 5]), 0x40) << "row by row";
}

TEST(BitArray, SingleBitsLeaveTheirNeighbours) {
    BBitArray a(16, 3, 3);
    a.SetAllBits();
    a.UnsetBit(1, 1, 10);
    EXPECT_EQ(a.CountBits(10), 8u);
    for (int plane = 0; plane < 16; ++plane)
        EXPECT_EQ(a.TestBit(1, 1, plane), plane != 10) << plane;
    a.ChangeBit(1, 1, 10, true);
    a.ChangeBit(0, 2, 15, false);
    EXPECT_EQ(Picture(a, 10) + Picture(a, 15), "###/###/###/###/###/.##/");
    a.UnsetAllBits();
    EXPECT_EQ(Stored(a).substr(12), std::string(18, '\0'));
}

TEST(BitArray, WholePlanes) {
    // Sizes around the 8-byte words, with one and with several bytes to a pixel.
    struct Case {
        std::string name;
        int planes, width, height, plane;
    };
    std::vector<Case> const cases = {
        {"one byte, words and a tail", 1, 13, 7, 0},
        {"one byte, high plane", 8, 8, 8, 7},
        {"one byte, long plane", 1, 4096, 3, 0},
        {"two bytes", 16, 5, 3, 12},
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
        EXPECT_EQ(Picture(b, c.plane ^ 1), Picture(a, c.plane ^ 1)) << c.name;
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
        std::string name;
        int x, y, width, height;
        std::string want;
    };
    std::vector<Case> const cases = {
        {"crop", 1, 1, 2, 2, "#./.#/"},
        {"extend all round", -1, -1, 6, 6, "....../.#..#./..#.../...#../....#./....../"},
        {"outside", 10, 10, 2, 2, "../../"},
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

TEST(BitArray, StoredFormRoundTrips) {
    BBitArray const a = Sample();
    struct Case {
        std::string name;
        std::string bytes;
        bool loads;
    };
    std::string const whole = Stored(a);
    std::vector<Case> const cases = {
        {"whole", whole, true},
        {"truncated data", whole.substr(0, whole.size() - 1), false},
        {"sizes no memory can hold", Le32(0x7FFFFFFF) + Le32(0x7FFFFFFF) + Le32(0x7FFFFFFF), false},
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

TEST(BitArray, ObjectArchiveFile) {
    TempDir dir;
    std::u16string const path = dir.U("mask.qva");
    {
        BQuorvelArchive out(path.c_str(), BArchive::WRITE, BString("class QvTest"), 3);
        out.Insert(new BBitArray(Sample()), "mask");
    }
    EXPECT_NE(ReadBytes(dir / "mask.qva").find(archive_files::Str("class BBitArray")),
              std::string::npos);
    BQuorvelArchive in(path.c_str(), BArchive::READ, BString("class QvTest"), 3);
    SP<BBitArray> loaded = SP<BBitArray>(in.TakeOut("mask"));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(Stored(*loaded), Stored(Sample()));
}

} // namespace
