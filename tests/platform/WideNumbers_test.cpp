// Expected values come from the MSVC runtime (ucrtbase) probed under Wine, docs/probes/.
#include <cerrno>
#include <cmath>
#include <gtest/gtest.h>
#include <qv/platform/WideNumbers.h>
#include <string>

namespace {

using namespace qv::platform;

TEST(WideNumbers, AtoiSaturatesAndStopsAtTheFirstNonDigit) {
    EXPECT_EQ(_wtoi(u" \t+42x"), 42);
    EXPECT_EQ(_wtoi(u"-3000000000"), -2147483647 - 1);
    EXPECT_EQ(_wtoi(u"0x10"), 0);
    EXPECT_EQ(_wtoi(u"\u00a012"), 12); // iswspace takes the no-break space
    EXPECT_EQ(qv::platform::atoi("  -17abc"), -17);
    EXPECT_EQ(qv::platform::atoi("99999999999999999999999"), 2147483647);
}

TEST(WideNumbers, AtofReadsTheLongestNumberPrefix) {
    EXPECT_EQ(_wtof(u" 1.5e3x"), 1500);
    EXPECT_EQ(_wtof(u"0x1p4"), 16);
    EXPECT_EQ(_wtof(u"1e"), 1);
    EXPECT_EQ(_wtof(u"-0x"), 0);
    EXPECT_TRUE(std::isinf(_wtof(u"inf")));
    EXPECT_TRUE(std::isinf(_wtof(u"1e999")));
    EXPECT_TRUE(std::isnan(_wtof(u"nan(123)")));
    EXPECT_EQ(qv::platform::atof(" -2.5"), -2.5);
    // A long number still parses whole.
    EXPECT_EQ(_wtof((u"1" + std::u16string(300, u'0') + u"e-299").c_str()), 10);
}

TEST(WideNumbers, I64ToTextShowsTwosComplementOutsideRadix10) {
    char16_t b[80];
    EXPECT_EQ(_i64tow_s(-255, b, 80, 16), 0);
    EXPECT_EQ(std::u16string(b), u"ffffffffffffff01");
    EXPECT_EQ(_i64tow_s(35, b, 80, 36), 0);
    EXPECT_EQ(std::u16string(b), u"z");
    EXPECT_EQ(_i64tow_s(5, b, 80, 37), EINVAL);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(_i64tow_s(12345, b, 5, 10), ERANGE);
    EXPECT_EQ(_i64tow_s(1234, b, 5, 10), 0);
    char a[70];
    EXPECT_EQ(_i64toa_s(-1, a, 70, 2), 0);
    EXPECT_EQ(std::string(a), std::string(64, '1'));
}

struct Scanned {
    int count;
    double d = -7;
    int i = -7;
};

Scanned ScanDouble(char16_t const* text) {
    Scanned s{};
    char16_t c;
    s.count = swscanf(text, u" %lg %c", &s.d, &c);
    return s;
}

Scanned ScanInt(char16_t const* text, char16_t const* format) {
    Scanned s{};
    char16_t c;
    s.count = swscanf(text, format, &s.i, &c);
    return s;
}

TEST(WideNumbers, ScanOfFloatsFailsOnTextThatOnlyBeginsANumber) {
    EXPECT_EQ(ScanDouble(u" 1.5 ").count, 1);
    for (char16_t const* bad : {u"1e", u"1e+", u"1.5e", u".", u"infin"})
        EXPECT_LT(ScanDouble(bad).count, 1);
    EXPECT_EQ(ScanDouble(u"0x1p3").d, 8);
    EXPECT_TRUE(std::isinf(ScanDouble(u"+infinity").d));
    EXPECT_EQ(ScanDouble(u"nan(abc)").count, 2);
    EXPECT_EQ(ScanDouble(u"").count, -1);
    EXPECT_EQ(ScanDouble(u"1.5x").count, 2);
}

TEST(WideNumbers, ScanOfIntegersWrapsAndNeedsDigits) {
    EXPECT_EQ(ScanInt(u"+5", u" %d %c").i, 5);
    EXPECT_EQ(ScanInt(u"- 5", u" %d %c").count, 0);
    EXPECT_EQ(ScanInt(u"3000000000", u" %d %c").i, -1294967296);
    EXPECT_EQ(ScanInt(u"0x1F", u" %x %c").i, 31);
    EXPECT_EQ(ScanInt(u"ffffffffff", u" %x %c").i, -1);
    EXPECT_EQ(ScanInt(u"0x", u" %x %c").count, 0);
    EXPECT_EQ(ScanInt(u"1.5", u" %x %c").count, 2);

    short h;
    long l;
    float f;
    char name[2];
    EXPECT_EQ(qv::platform::sscanf("7,-8:2.5ab", "%hd,%ld:%f%c", &h, &l, &f, name), 4);
    EXPECT_EQ(h, 7);
    EXPECT_EQ(l, -8);
    EXPECT_EQ(f, 2.5f);
    EXPECT_EQ(name[0], 'a');
    EXPECT_EQ(qv::platform::sscanf("5;", "%d,%d", &l, &l), 1);
}

} // namespace
