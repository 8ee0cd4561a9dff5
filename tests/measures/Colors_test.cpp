// Colours: limiting, packing and rounding, hue, the stock table, the byte forms' wrapping and
// the stored forms.
#include "persistence/MemoryArchive.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <qv/measures/BFColor.h>
#include <qv/measures/BRgb.h>
#include <qv/measures/BRgba.h>
#include <string>
#include <vector>

namespace {

::testing::AssertionResult Channels(BFColor const& c, float r, float g, float b, float a) {
    if (c.Red() == r && c.Green() == g && c.Blue() == b && c.Alpha() == a)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "(" << c.Red() << ", " << c.Green() << ", " << c.Blue() << ", " << c.Alpha() << ")";
}

struct FactCase {
    std::string name;
    bool holds;
};

struct ColorCase {
    std::string name;
    BFColor got;
    float r, g, b, a;
};

TEST(Colors, ChannelsStayInRange) {
    BFColor const half(0.5f, 0.5f, 0.5f, 0.5f);
    BArray<BFColor> colors;
    colors.Add(BFColor(1.0f, 0.0f, 0.5f, 1.0f));
    colors.Add(BFColor(0.0f, 0.0f, 0.25f, 0.0f));
    BArray<BFColor> none;
    std::vector<ColorCase> const cases = {
        {"constructor limits", BFColor(2.0f, -1.0f, 0.5f, 1.0f), 1.0f, 0.0f, 0.5f, 1.0f},
        {"default is opaque black", BFColor(), 0, 0, 0, 1},
        {"packed 0x00BBGGRR is red first", BFColor(0x0000FFu), 1, 0, 0, 1},
        {"packed blue", BFColor(0xFF0000u), 0, 0, 1, 1},
        {"from bytes, alpha included", BFColor(BRgba(255, 0, 0, 0)), 1, 0, 0, 0},
        {"sum limits alpha too", half + BFColor(0.75f, 0.0f, 0.25f, 0.75f), 1, 0.5f, 0.75f, 1},
        {"difference limits at 0", half - BFColor(0.75f, 0.0f, 0.25f, 0.25f), 0, 0.5f, 0.25f,
         0.25f},
        {"product limits", half * 3.0f, 1, 1, 1, 1},
        {"quotient", half / 2.0f, 0.25f, 0.25f, 0.25f, 0.25f},
        {"negative factor", half * -1.0f, 0, 0, 0, 0},
        {"grey is opaque", BFColor(0.3f, 0.6f, 0.0f, 0.2f).Grey(), 0.3f, 0.3f, 0.3f, 1},
        {"contrast 1 offset 0 keeps colour, alpha 1", half.ContrastOffset(1.0f, 0.0f), 0.5f, 0.5f,
         0.5f, 1},
        {"contrast 2 offset 0.25", BFColor(0.5f, 0.0f, 1.0f, 0.0f).ContrastOffset(2.0f, 0.25f),
         1.0f, 0.0f, 1.0f, 1},
        {"average", BFColor::Average(&colors), 0.5f, 0.0f, 0.375f, 0.5f},
        {"average of nothing is transparent black", BFColor::Average(&none), 0, 0, 0, 0},
        {"stock 22 is stock 1", BFColor::GetStockColor(22), 1, 1, 1, 1},
        {"stock 15", BFColor::GetStockColor(15), 0.75f, 0.5f, 0.25f, 1},
        {"negative index counts from the end: stock 20", BFColor::GetStockColor(-1), 0.5f, 0.75f,
         0.25f, 1},
    };
    for (auto const& c : cases)
        EXPECT_TRUE(Channels(c.got, c.r, c.g, c.b, c.a)) << c.name;
}

TEST(Colors, PackingAndHue) {
    BFColor const half(0.5f, 0.5f, 0.5f, 0.5f);
    struct Case {
        std::string name;
        double got;
        double want;
    };
    std::vector<Case> const cases = {
        {"hue red", BFColor(1, 0, 0).Hue(), 0},
        {"hue green", BFColor(0, 1, 0).Hue(), 120},
        {"hue blue", BFColor(0, 0, 1).Hue(), 240},
        {"hue magenta", BFColor(1, 0, 1).Hue(), 300},
        {"hue below red wraps", BFColor(1.0f, 0.0f, 0.5f).Hue(), 330},
        {"hue grey", BFColor(0.5f, 0.5f, 0.5f).Hue(), 0},
        {"hue black", BFColor().Hue(), 0},
        {"saturation grey", BFColor(0.5f, 0.5f, 0.5f).Saturation(), 0},
        {"saturation", BFColor(1.0f, 0.5f, 0.25f).Saturation(), 0.75},
        {"brightness", BFColor(0.25f, 0.75f, 0.5f).Brightness(), 0.75},
    };
    for (auto const& c : cases)
        EXPECT_NEAR(c.got, c.want, 1e-4) << c.name;
    struct Packed {
        std::string name;
        unsigned int got;
        unsigned int want;
    };
    std::vector<Packed> const packed = {
        {"white ARGB", BFColor(1, 1, 1, 1).CastToARGB(), 0xFFFFFFFFu},
        {"white COLORREF", BFColor(1, 1, 1, 1).CastToCOLORREF(), 0x00FFFFFFu},
        {"ARGB order", BFColor(1.0f, 0.0f, 0.0f, 0.0f).CastToARGB(), 0x00FF0000u},
        {"COLORREF order", BFColor(0.0f, 0.0f, 1.0f, 0.0f).CastToCOLORREF(), 0x00FF0000u},
        {"half rounds up to 128", half.CastToARGB(), 0x80808080u},
        {"FromFloat truncates to 127", BRgba::FromFloat(0.5f, 0.5f, 0.5f, 0.5f).m_red, 127},
        {"FromFloat does not limit", BRgba::FromFloat(2.0f, 0, 0, 0).m_red, 254},
    };
    for (auto const& c : packed)
        EXPECT_EQ(c.got, c.want) << c.name;
    float hue = -1, saturation = -1, brightness = -1;
    BFColor(0.0f, 0.5f, 0.25f).ConvertToHSB(hue, saturation, brightness);
    EXPECT_NEAR(hue, 150.0f, 1e-4f);
    EXPECT_EQ(saturation, 1.0f);
    EXPECT_EQ(brightness, 0.5f);
}

TEST(Colors, StockTableIsFilledAtStart) {
    // Every entry opaque, and no two alike.
    for (int i = 0; i < 21; ++i) {
        EXPECT_EQ(BFColor::Color[i].Alpha(), 1.0f) << i;
        for (int j = 0; j < i; ++j)
            EXPECT_NE(BFColor::Color[i], BFColor::Color[j]) << i << " " << j;
    }
}

// The bytes of a value as they lie in memory.
template <class T>
std::string Memory(T const& value) {
    return std::string(reinterpret_cast<char const*>(&value), sizeof value);
}

TEST(Colors, BytesWrapAndCompareInAllChannels) {
    BRgb packed;
    packed.ColorRef(0x00332211ul);
    BRgba assigned(1, 2, 3, 4);
    assigned = 9;
    std::vector<FactCase> const cases = {
        {"a byte wraps", BRgb(200, 10, 10) + 100 == BRgb(44, 110, 110)},
        {"memory order blue, green, red", Memory(BRgb(1, 2, 3)) == "\3\2\1"},
        {"memory order alpha, blue, green, red", Memory(BRgba(1, 2, 3, 4)) == "\4\3\2\1"},
        {"ColorRef both ways", packed == BRgb(0x11, 0x22, 0x33) && packed.ColorRef() == 0x332211ul},
        {"neither less nor greater",
         !(BRgb(1, 5, 5) < BRgb(2, 4, 6)) && !(BRgb(1, 5, 5) > BRgb(2, 4, 6))},
        {"less in all", BRgb(1, 2, 3) < 4 && !(BRgb(1, 2, 4) < 4)},
        {"intensity", BRgb(7, 90, 3).Intensity() == 90 && BRgba(7, 9, 3, 200).Intensity() == 9},
        {"byte comparison ignores alpha",
         !(BRgba(10, 20, 30, 40) == 10) && BRgba(7, 7, 7, 40) == 7},
        {"colour comparison includes alpha", !(BRgba(7, 7, 7, 40) == BRgba(7, 7, 7, 41))},
        {"alpha of a sum is the operand's", BRgba(250, 1, 2, 9) + 10 == BRgba(4, 11, 12, 9)},
        {"from BRgb is opaque", BRgba(BRgb(1, 2, 3)) == BRgba(1, 2, 3, 255)},
        {"assignment of a byte is opaque", assigned == BRgba(9, 9, 9, 255)},
    };
    for (auto const& c : cases)
        EXPECT_TRUE(c.holds) << c.name;
}

TEST(Colors, ArchiveForm) {
    MemoryArchive out({}, BArchive::WRITE);
    out << BFColor(0.25f, 0.5f, 0.75f, 1.0f);
    float const written[4] = {0.25f, 0.5f, 0.75f, 1.0f};
    ASSERT_EQ(out.Bytes(), std::string(reinterpret_cast<char const*>(written), 16));

    struct Case {
        std::string name;
        std::string bytes;
        float r, g, b, a;
    };
    float const foreign[4] = {2.0f, -1.0f, 0.5f, 0.25f};
    std::vector<Case> const cases = {
        {"round trip", out.Bytes(), 0.25f, 0.5f, 0.75f, 1.0f},
        {"foreign values are limited", std::string(reinterpret_cast<char const*>(foreign), 16),
         1.0f, 0.0f, 0.5f, 0.25f},
        {"short record keeps the target's channels",
         std::string(reinterpret_cast<char const*>(foreign), 8), 1.0f, 0.0f, 0.0f, 1.0f},
    };
    for (auto const& c : cases) {
        MemoryArchive in(c.bytes);
        BFColor color(0.0f, 0.0f, 0.0f, 1.0f);
        in >> color;
        EXPECT_TRUE(Channels(color, c.r, c.g, c.b, c.a)) << c.name;
    }
}

TEST(Colors, StreamFormTakesValuesUnlimited) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    float const foreign[4] = {2.0f, -1.0f, 0.5f, 0.25f};
    std::fwrite(foreign, 4, 4, file);
    BFColor(0.125f, 0.25f, 0.5f, 1.0f).Write(file);
    std::rewind(file);
    BFColor a, b, c(0.5f, 0.5f, 0.5f, 0.5f);
    a.Read(file);
    b.Read(file);
    c.Read(file); // at the end: unchanged
    std::fclose(file);
    EXPECT_TRUE(Channels(a, 2.0f, -1.0f, 0.5f, 0.25f));
    EXPECT_TRUE(Channels(b, 0.125f, 0.25f, 0.5f, 1.0f));
    EXPECT_TRUE(Channels(c, 0.5f, 0.5f, 0.5f, 0.5f));
    // Unlimited channels still pack into defined bytes.
    EXPECT_EQ(a.CastToARGB(), 0x40FE0280u);
}

} // namespace
