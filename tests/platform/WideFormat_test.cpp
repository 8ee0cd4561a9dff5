// Expected texts come from the MSVC runtime (ucrtbase) probed under Wine, docs/probes/.
#include <cerrno>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <qv/platform/CodePage.h>
#include <qv/platform/WideFormat.h>
#include <string>

namespace {

using qv::platform::Utf16ToUtf8;

std::string W(char16_t const* format, ...) {
    char16_t buffer[600];
    va_list args;
    va_start(args, format);
    int n = qv::platform::_vsnwprintf_s(buffer, 600, 599, format, args);
    va_end(args);
    return n < 0 ? "<" + std::to_string(n) + ">" : Utf16ToUtf8(std::u16string_view(buffer, n));
}

std::string N(char const* format, ...) {
    char buffer[600];
    va_list args;
    va_start(args, format);
    int n = qv::platform::vsnprintf_s(buffer, 600, 599, format, args);
    va_end(args);
    return n < 0 ? "<" + std::to_string(n) + ">" : std::string(buffer, n);
}

TEST(WideFormat, StringsAndCharactersOfBothWidths) {
    EXPECT_EQ(W(u"%05s|%-5s|%.1s|%s", u"ab", u"cd", u"ef", static_cast<char16_t*>(nullptr)),
              "000ab|cd   |e|(null)");
    EXPECT_EQ(W(u"%S|%hs|%ls|%ws|%C|%c", "nar", "row", u"wi", u"de", 'x', u'y'),
              "nar|row|wi|de|x|y");
    EXPECT_EQ(W(u"%%|%c|%5c", 0x263a, u'z'), "%|\u263a|    z");
    EXPECT_EQ(N("%s|%S|%ls|%C|%lc|%-3c|", "n", u"w", u"x", u'y', u'z', 'q'), "n|w|x|y|z|q  |");
    // The character 0 is one unit of output, in every form and width.
    using namespace std::string_literals;
    EXPECT_EQ(W(u"[%c|%hc|%lc|%C|%wc]", 0, 0, 0, 0, 0), "[\0|\0|\0|\0|\0]"s);
    EXPECT_EQ(W(u"%3c|%-3c|", 0, 0), "  \0|\0  |"s);
    EXPECT_EQ(N("[%c|%hc|%lc|%C]", 0, 0, 0, 0), "[\0|\0|\0|\0]"s);
}

// Where the Windows runtime's answers differ from the C library's, or are easy to get wrong.
TEST(WideFormat, IntegersWithWindowsSizesAndFlags) {
    EXPECT_EQ(W(u"%.0d|%4.2d|%-04d|%#x|%#o|%#X|%hhd", 0, 5, 5, 0, 8, 255, 300),
              "|  05|5   |0|010|0XFF|44");
    EXPECT_EQ(
        W(u"%I64d|%I32d|%hd|%zd|%-*d|%.*f", -1LL << 40, 70000, 70000, size_t{5}, 5, 2, -2, 3.14159),
        "-1099511627776|70000|4464|5|2    |3.141590");
    EXPECT_EQ(N("%lld", std::numeric_limits<long long>::min()), "-9223372036854775808");
}

TEST(WideFormat, FloatingPointAsTheMsvcRuntimePrintsIt) {
    double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(W(u"%f|%F|%f|%05f", inf, -inf, std::nan(""), inf), "inf|-INF|nan|  inf");
    // The NaN that x86 arithmetic makes is negative with an empty payload: "indefinite".
    volatile double zero = 0;
    EXPECT_EQ(W(u"%f|%F|%f", zero / zero, zero / zero, -(zero / zero)), "-nan(ind)|-NAN(IND)|nan");
    EXPECT_EQ(W(u"%a|%A|%.3a|%a", 1.0, 0.0, 1.0, 5e-324),
              "0x1.0000000000000p+0|0X0.0000000000000P+0|0x1.000p+0|0x0.0000000000001p-1022");
    EXPECT_EQ(W(u"%#.0f|%#.0e|%#g|%.20g|%#.3g", 2.0, 3.0, 1.0, 0.1, 1e-5),
              "2.|3.e+00|1.00000|0.10000000000000000555|1.00e-05");
    EXPECT_EQ(W(u"%p|%10p", reinterpret_cast<void*>(0x1234), reinterpret_cast<void*>(0xab)),
              "0000000000001234|00000000000000AB");
    EXPECT_EQ(N("%.500f", 1.0).size(), 502u);
}

TEST(WideFormat, InvalidFormatsAndTruncation) {
    char16_t buffer[8];
    errno = 0;
    EXPECT_EQ(W(u"%y|%d", 5, 6), "<-1>");
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(W(u"%n", nullptr), "<-1>");
    EXPECT_EQ(W(u"%"), "<-1>");

    va_list none{};
    EXPECT_EQ(qv::platform::_vsnwprintf_s(buffer, 8, 7, nullptr, none), -1);
    // Exactly the limit fits; one more is truncated and reported.
    auto format = [&](std::size_t count, char16_t const* f, ...) {
        va_list args;
        va_start(args, f);
        int n = qv::platform::_vsnwprintf_s(buffer, 8, count, f, args);
        va_end(args);
        return n;
    };
    EXPECT_EQ(format(7, u"%s", u"1234567"), 7);
    EXPECT_EQ(format(7, u"%s", u"12345678"), -1);
    EXPECT_EQ(std::u16string(buffer), u"1234567");
    EXPECT_EQ(format(3, u"ab%d", 12), -1);
    EXPECT_EQ(std::u16string(buffer), u"ab1");
}

} // namespace
