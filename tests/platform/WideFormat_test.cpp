#include <cstdarg>
#include <gtest/gtest.h>
#include <qv/platform/WideFormat.h>
#include <string>

using qv::platform::FormatWide;

namespace {
struct Formatted {
    int result;
    std::u16string text;
};

Formatted Format(std::size_t count, char16_t const* format, ...) {
    char16_t buffer[256];
    va_list args;
    va_start(args, format);
    int const result = FormatWide(buffer, count, format, args);
    va_end(args);
    return {result, buffer};
}

std::u16string F(char16_t const* format, auto... args) {
    Formatted const f = Format(256, format, args...);
    EXPECT_EQ(f.result, static_cast<int>(f.text.size()));
    return f.text;
}
} // namespace

// Expected texts are what the Windows runtime prints (see docs/probes/wide_format_probe.cpp).
TEST(FormatWide, StringsAndCharactersOfBothWidths) {
    EXPECT_EQ(F(u"%s|%5s|%-5s|%05s|%.2s", u"ab", u"ab", u"ab", u"ab", u"abc"),
              u"ab|   ab|ab   |000ab|ab");
    EXPECT_EQ(F(u"%S|%hs|%ls|%ws|%C|%c|%hc", "na", "nb", u"wc", u"wd", 'x', u'y', 'z'),
              u"na|nb|wc|wd|x|y|z");
    EXPECT_EQ(F(u"%s|%S", static_cast<char16_t const*>(nullptr), static_cast<char const*>(nullptr)),
              u"(null)|(null)");
    EXPECT_EQ(F(u"%s", u"\u00e9\u4e2d"), u"\u00e9\u4e2d");
    EXPECT_EQ(F(u"%S", "caf\xe9"), u"caf\u00e9") << "narrow text is in the ANSI code page";
}

TEST(FormatWide, IntegersWithWindowsSizes) {
    EXPECT_EQ(F(u"%d|%5.3d|%-+5d|% d|%x|%#X|%o|%u", 42, 7, 3, 4, 255, 255, 8, -1),
              u"42|  007|+3   | 4|ff|0XFF|10|4294967295");
    EXPECT_EQ(F(u"%hd|%hhd|%lld|%I64d|%I32d|%Id|%zd", 70000, 300, -5ll, 6ll, 7, std::size_t{8},
                std::size_t{9}),
              u"4464|44|-5|6|7|8|9");
    // long has 32 bits on Windows: a 64-bit long is read as its low half.
    EXPECT_EQ(F(u"%ld|%lu", 0x1'0000'0005l, 0xFFFF'FFFF'FFFF'FFFFul), u"5|4294967295");
    EXPECT_EQ(F(u"%X|%x|%d|%lld", 0xBEEFu, 0xBEEFu, -2147483647 - 1, -9223372036854775807ll - 1),
              u"BEEF|beef|-2147483648|-9223372036854775808");
    EXPECT_EQ(F(u"%*d|%-*d|%.*s|%*d", 4, 1, 4, 2, 1, u"xyz", -3, 9), u"   1|2   |x|9  ");
}

TEST(FormatWide, FloatingPointAndPointers) {
    EXPECT_EQ(F(u"%f|%.2e|%g|%G", 1.5, 12345.678, 0.0001, 1e20), u"1.500000|1.23e+04|0.0001|1E+20");
    EXPECT_EQ(F(u"%p|%20p|%-20p|", reinterpret_cast<void*>(0x1234), reinterpret_cast<void*>(0x1234),
                reinterpret_cast<void*>(0x1234)),
              u"0000000000001234|    0000000000001234|0000000000001234    |");
}

TEST(FormatWide, TooLongTextIsCutAndReportedAsMinusOne) {
    Formatted f = Format(4, u"abcdef");
    EXPECT_EQ(f.result, -1);
    EXPECT_EQ(f.text, u"abc");
    f = Format(4, u"abc");
    EXPECT_EQ(f.result, 3);
    f = Format(4, u"%s", u"abcd");
    EXPECT_EQ(f.result, -1);
    EXPECT_EQ(f.text, u"abc");
    f = Format(4, u"%S", "abcd");
    EXPECT_EQ(f.result, -1);
    f = Format(4, u"%3S", "ab");
    EXPECT_EQ(f.result, 3);
    EXPECT_EQ(f.text, u" ab");
}

TEST(FormatWide, InvalidFormatsGiveAnEmptyText) {
    for (char16_t const* format : {u"%y", u"abc%", u"%n", u"%99999999d", u"%Z"}) {
        Formatted f = Format(256, format, 1);
        EXPECT_EQ(f.result, -1) << std::string(format,
                                               format + std::char_traits<char16_t>::length(format));
        EXPECT_EQ(f.text, u"");
    }
    EXPECT_EQ(Format(256, u"%*d", -2147483647 - 1, 5).result, -1) << "no width to negate";
    EXPECT_EQ(F(u"100%%"), u"100%");
    char16_t buffer[4];
    va_list none{};
    EXPECT_EQ(FormatWide(buffer, 0, u"x", none), -1);
    EXPECT_EQ(FormatWide(nullptr, 4, u"x", none), -1);
}
