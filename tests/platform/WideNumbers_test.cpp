// Expected values come from the MSVC runtime (ucrtbase) probed under Wine, docs/probes/.
#include <cerrno>
#include <cmath>
#include <gtest/gtest.h>
#include <qv/platform/WideNumbers.h>
#include <string>
#include <utility>

namespace {

using namespace qv::platform;

TEST(WideNumbers, AtoiSaturatesAndReadsTheDigitsOfSeveralScripts) {
    struct Row {
        char const* name;
        char16_t const* text;
        int value;
    } const rows[] = {
        {"sign and a stop", u" \t+42x", 42},
        {"saturates", u"-3000000000", -2147483647 - 1},
        {"no-break space", u"\u00a012", 12},
        {"full-width", u"\uff11\uff12", 12},
        {"Devanagari, signed", u"-\u0967\u0968", -12},
        {"mixed scripts", u"1\u0662\uff13", 123},
        {"no superscript", u"\u00b9", 0},
        {"no NKo digit", u"1\u07c12", 1},
    };
    for (Row const& r : rows)
        EXPECT_EQ(_wtoi(r.text), r.value) << r.name;
    EXPECT_EQ(qv::platform::atoi("99999999999999999999999"), 2147483647);
}

TEST(WideNumbers, AtofReadsTheLongestNumberPrefix) {
    struct Row {
        char const* name;
        char16_t const* text;
        double value;
    } const rows[] = {
        {"exponent and a stop", u" 1.5e3x", 1500},
        {"hexadecimal", u"0x1p4", 16},
        {"dangling exponent", u"1e", 1},
        {"bare prefix", u"-0x", 0},
        {"d exponent", u"1d3", 1000},
        {"d is a hexadecimal digit", u"0x1d3", 467},
        {"no full-width digits", u"\uff11\uff12", 0},
    };
    for (Row const& r : rows)
        EXPECT_EQ(_wtof(r.text), r.value) << r.name;
    EXPECT_TRUE(std::isinf(_wtof(u"1e999")));
    EXPECT_TRUE(std::isnan(_wtof(u"nan(123)")));
    EXPECT_EQ(qv::platform::atof("-1d2x"), -100);
    std::u16string const longMantissa = u"1" + std::u16string(300, u'0') + u"e-299";
    EXPECT_EQ(_wtof(longMantissa.c_str()), 10);
}

TEST(WideNumbers, WcstoulIs32BitsWide) {
    struct Row {
        char16_t const* text;
        int base;
        unsigned long value;
        int end;
        int error;
    } const rows[] = {
        {u" 42x", 36, 5289, 4, 0},
        {u"-1", 10, 4294967295, 2, 0},
        {u"4294967296", 16, 4294967295, 10, ERANGE},
        {u"-4294967296", 10, 1, 11, ERANGE},
        {u"0x1F", 0, 31, 4, 0},
        {u"0x", 16, 0, 0, 0},
        {u"08", 0, 0, 1, 0},
        {u"  -  1", 10, 0, 0, 0},
        {u"\uff11\uff12", 16, 18, 2, 0},
        {u"1\u0661", 10, 11, 2, 0},
        {u"5", 1, 0, 0, EINVAL},
    };
    for (Row const& r : rows) {
        std::string const name = testing::PrintToString(r.text) + " base " + std::to_string(r.base);
        char16_t* end = nullptr;
        errno = 0;
        EXPECT_EQ(wcstoul(r.text, &end, r.base), r.value) << name;
        EXPECT_EQ(end - r.text, r.end) << name;
        EXPECT_EQ(errno, r.error) << name;
    }
}

TEST(WideNumbers, I64ToTextShowsTwosComplementOutsideRadix10) {
    char16_t b[80];
    EXPECT_EQ(_i64tow_s(-255, b, 80, 16), 0);
    EXPECT_EQ(std::u16string(b), u"ffffffffffffff01");
    EXPECT_EQ(_i64tow_s(5, b, 80, 37), EINVAL);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(_i64tow_s(12345, b, 5, 10), ERANGE);
    EXPECT_EQ(_i64tow_s(1234, b, 5, 10), 0);
    char a[70];
    EXPECT_EQ(_i64toa_s(-1, a, 70, 2), 0);
    EXPECT_EQ(std::string(a), std::string(64, '1'));
}

// What swscanf answers for one number and a character behind it: the count and the number.
template <class T>
std::pair<int, T> Scan(char16_t const* text, char16_t const* format) {
    T value{};
    char16_t c;
    int const count = swscanf(text, format, &value, &c);
    return {count, value};
}
std::pair<int, double> ScanDouble(char16_t const* text) {
    return Scan<double>(text, u" %lg %c");
}

TEST(WideNumbers, ScanOfFloatsFailsOnTextThatOnlyBeginsANumber) {
    for (char16_t const* bad : {u"1e", u"1e+", u"1.5e", u".", u"infin", u"1d"})
        EXPECT_LT(ScanDouble(bad).first, 1);
    EXPECT_EQ(ScanDouble(u"0x1p3").second, 8);
    EXPECT_EQ(ScanDouble(u"1D3").second, 1000);
    EXPECT_EQ(Scan<int>(u"\uff11\uff12", u" %d %c").first, 0) << "scanf reads ASCII digits only";
    EXPECT_TRUE(std::isinf(ScanDouble(u"+infinity").second));
    EXPECT_EQ(ScanDouble(u"nan(abc)").first, 2);
    EXPECT_EQ(ScanDouble(u"").first, -1);
}

TEST(WideNumbers, ScanOfIntegersWrapsAndNeedsDigits) {
    EXPECT_EQ(Scan<int>(u"- 5", u" %d %c").first, 0);
    EXPECT_EQ(Scan<int>(u"3000000000", u" %d %c").second, -1294967296);
    EXPECT_EQ(Scan<int>(u"ffffffffff", u" %x %c").second, -1);
    EXPECT_EQ(Scan<int>(u"0x", u" %x %c").first, 0);
    EXPECT_EQ(Scan<int>(u"1.5", u" %x %c").first, 2);

    short h;
    long l;
    float f;
    char name[2];
    EXPECT_EQ(qv::platform::sscanf("7,-8:2.5ab", "%hd,%ld:%f%c", &h, &l, &f, name), 4);
    EXPECT_EQ(std::to_string(h) + "," + std::to_string(l) + "," + std::to_string(f) + name[0],
              "7,-8,2.500000a");
    EXPECT_EQ(qv::platform::sscanf("5;", "%d,%d", &l, &l), 1);
}

} // namespace
