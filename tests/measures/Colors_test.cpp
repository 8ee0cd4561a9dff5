#include "persistence/MemoryArchive.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <qv/measures/BFColor.h>
#include <qv/measures/BRgb.h>
#include <qv/measures/BRgba.h>
#include <string>
#include <vector>

namespace {

std::string Text(float r, float g, float b, float a) {
    return std::to_string(r) + " " + std::to_string(g) + " " + std::to_string(b) + " " +
           std::to_string(a);
}
std::string Text(BFColor const& c) {
    return Text(c.Red(), c.Green(), c.Blue(), c.Alpha());
}

TEST(Colors, ChannelsStayInRange) {
    BFColor const half(0.5f, 0.5f, 0.5f, 0.5f);
    BArray<BFColor> colors, none;
    colors.Add(BFColor(1.0f, 0.0f, 0.5f, 1.0f));
    colors.Add(BFColor(0.0f, 0.0f, 0.25f, 0.0f));
    struct Case {
        std::string name;
        BFColor got;
        float r, g, b, a;
    } const cases[] = {
        {"constructor limits", BFColor(2.0f, -1.0f, 0.5f, 1.0f), 1.0f, 0.0f, 0.5f, 1.0f},
        {"packed 0x00BBGGRR is red first", BFColor(0x0000FFu), 1, 0, 0, 1},
        {"from bytes, alpha included", BFColor(BRgba(255, 0, 0, 0)), 1, 0, 0, 0},
        {"sum limits alpha too", half + BFColor(0.75f, 0.0f, 0.25f, 0.75f), 1, 0.5f, 0.75f, 1},
        {"contrast 2 offset 0.25", BFColor(0.5f, 0.0f, 1.0f, 0.0f).ContrastOffset(2.0f, 0.25f),
         1.0f, 0.0f, 1.0f, 1},
        {"average", BFColor::Average(&colors), 0.5f, 0.0f, 0.375f, 0.5f},
        {"average of nothing is transparent black", BFColor::Average(&none), 0, 0, 0, 0},
        {"stock 22 is stock 1", BFColor::GetStockColor(22), 1, 1, 1, 1},
        {"negative index counts from the end: stock 20", BFColor::GetStockColor(-1), 0.5f, 0.75f,
         0.25f, 1},
    };
    for (auto const& c : cases)
        EXPECT_EQ(Text(c.got), Text(c.r, c.g, c.b, c.a)) << c.name;
}

TEST(Colors, PackingAndHue) {
    struct Case {
        std::string name;
        double got, want;
    } const cases[] = {
        {"hue below red wraps", BFColor(1.0f, 0.0f, 0.5f).Hue(), 330},
        {"saturation", BFColor(1.0f, 0.5f, 0.25f).Saturation(), 0.75},
        {"brightness", BFColor(0.25f, 0.75f, 0.5f).Brightness(), 0.75},
    };
    for (auto const& c : cases)
        EXPECT_NEAR(c.got, c.want, 1e-4) << c.name;
    struct Packed {
        std::string name;
        unsigned int got, want;
    } const packed[] = {
        {"COLORREF order", BFColor(0.0f, 0.0f, 1.0f, 0.0f).CastToCOLORREF(), 0x00FF0000u},
        {"half rounds up to 128", BFColor(0.5f, 0.5f, 0.5f, 0.5f).CastToARGB(), 0x80808080u},
        {"FromFloat truncates to 127", BRgba::FromFloat(0.5f, 0.5f, 0.5f, 0.5f).m_red, 127},
        {"FromFloat does not limit", BRgba::FromFloat(2.0f, 0, 0, 0).m_red, 254},
    };
    for (auto const& c : packed)
        EXPECT_EQ(c.got, c.want) << c.name;
    float hue = -1, saturation = -1, brightness = -1;
    BFColor(0.0f, 0.5f, 0.25f).ConvertToHSB(hue, saturation, brightness);
    EXPECT_EQ(Text(hue, saturation, brightness, 0), Text(150.0f, 1.0f, 0.5f, 0));
}

// The bytes of a value as they lie in memory.
template <class T>
std::string Memory(T const& value) {
    return std::string(reinterpret_cast<char const*>(&value), sizeof value);
}

TEST(Colors, BytesWrapAndCompareInAllChannels) {
    struct {
        std::string name;
        bool holds;
    } const cases[] = {
        {"a byte wraps", BRgb(200, 10, 10) + 100 == BRgb(44, 110, 110)},
        {"memory order alpha, blue, green, red", Memory(BRgba(1, 2, 3, 4)) == "\4\3\2\1"},
        {"byte comparison ignores alpha",
         !(BRgba(10, 20, 30, 40) == 10) && BRgba(7, 7, 7, 40) == 7},
        {"alpha of a sum is the operand's", BRgba(250, 1, 2, 9) + 10 == BRgba(4, 11, 12, 9)},
    };
    for (auto const& c : cases)
        EXPECT_TRUE(c.holds) << c.name;
}

TEST(Colors, StoredForms) {
    MemoryArchive out({}, BArchive::WRITE);
    out << BFColor(0.25f, 0.5f, 0.75f, 1.0f);
    float const written[4] = {0.25f, 0.5f, 0.75f, 1.0f};
    ASSERT_EQ(out.Bytes(), Memory(written));
    float const foreign[4] = {2.0f, -1.0f, 0.5f, 0.25f};
    struct Case {
        std::string name;
        std::string bytes;
        float r, g, b, a;
    } const cases[] = {
        {"archive: foreign values are limited", Memory(foreign), 1.0f, 0.0f, 0.5f, 0.25f},
        {"archive: short record keeps the target's channels", Memory(foreign).substr(0, 8), 1.0f,
         0.0f, 0.0f, 1.0f},
    };
    for (auto const& c : cases) {
        MemoryArchive in(c.bytes);
        BFColor color(0.0f, 0.0f, 0.0f, 1.0f);
        in >> color;
        EXPECT_EQ(Text(color), Text(c.r, c.g, c.b, c.a)) << c.name;
    }
    // The stream form takes values unlimited and leaves the colour alone at the end.
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::fwrite(foreign, 4, 4, file);
    BFColor(0.125f, 0.25f, 0.5f, 1.0f).Write(file);
    std::rewind(file);
    BFColor a, b, c(0.5f, 0.5f, 0.5f, 0.5f);
    for (BFColor* color : {&a, &b, &c})
        color->Read(file);
    std::fclose(file);
    EXPECT_EQ(Text(a) + "|" + Text(b) + "|" + Text(c), Text(2.0f, -1.0f, 0.5f, 0.25f) + "|" +
                                                           Text(0.125f, 0.25f, 0.5f, 1.0f) + "|" +
                                                           Text(0.5f, 0.5f, 0.5f, 0.5f));
    EXPECT_EQ(a.CastToARGB(), 0x40FE0280u) << "unlimited channels still pack into defined bytes";
}

} // namespace
