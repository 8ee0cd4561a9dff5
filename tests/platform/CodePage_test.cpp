#include "qv/platform/CodePage.h"
#include "qv/platform/TextServices.h"

#include <gtest/gtest.h>
#include <string>

using namespace qv::platform;

namespace {

std::string ToAnsi(std::u16string const& s) {
    int const n = WideCharToMultiByte(s.data(), static_cast<int>(s.size()), nullptr, 0);
    std::string out(static_cast<std::size_t>(n), '\0');
    if (n > 0) {
        EXPECT_EQ(WideCharToMultiByte(s.data(), static_cast<int>(s.size()), out.data(), n), n);
    }
    return out;
}

std::u16string FromAnsi(std::string const& s) {
    int const n = MultiByteToWideChar(s.data(), static_cast<int>(s.size()), nullptr, 0);
    std::u16string out(static_cast<std::size_t>(n), u'\0');
    if (n > 0) {
        EXPECT_EQ(MultiByteToWideChar(s.data(), static_cast<int>(s.size()), out.data(), n), n);
    }
    return out;
}

// Puts the default code page back however a test ends.
struct CodePageGuard {
    ~CodePageGuard() { SetAnsiCodePage("windows-1252"); }
};

} // namespace

TEST(CodePageConvention, LengthsAndSizesAsWindowsCountsThem) {
    char buffer[16] = {};
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, nullptr, 0), 4); // the terminator counts
    EXPECT_EQ(WideCharToMultiByte(u"abc", 3, buffer, 3), 3);   // no terminator when counted
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, buffer, 3), 0);  // too small
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, nullptr, 4), 0);
    char16_t wide[16] = {};
    EXPECT_EQ(MultiByteToWideChar("abc", -1, wide, 16), 4);
    EXPECT_EQ(std::u16string(wide), u"abc");
    EXPECT_EQ(MultiByteToWideChar("abc", -1, wide, 2), 0);
    EXPECT_EQ(MultiByteToWideChar("abc", 0, wide, 16), 0);
    // Longer than the converters' internal chunks, to count the size in several rounds.
    std::u16string const longText(5000, u'\u00E9');
    EXPECT_EQ(ToAnsi(longText), std::string(5000, '\xE9'));
    EXPECT_EQ(FromAnsi(std::string(5000, '\x80')), std::u16string(5000, u'\u20AC'));
}

TEST(CodePageWindows1252, EveryByteReadsAndRoundTripsAsOnWindows) {
    EXPECT_EQ(FromAnsi("\x80\x82\x8A\x9F\xA0\xE9\xFF"),
              u"\u20AC\u201A\u0160\u0178\u00A0\u00E9\u00FF");
    // The five bytes the code page leaves undefined are C1 controls on Windows.
    EXPECT_EQ(FromAnsi("\x81\x8D\x8F\x90\x9D"), u"\u0081\u008D\u008F\u0090\u009D");
    for (int b = 1; b < 256; ++b) {
        std::string const byte(1, static_cast<char>(b));
        std::u16string const wide = FromAnsi(byte);
        ASSERT_EQ(wide.size(), 1u) << b;
        EXPECT_EQ(ToAnsi(wide), byte) << b;
    }
}

// Windows' answers: best fits (Ā→A, ∞→8, Đ→Ð, ideographic space→space), '?' for the
// rest, one per unit of a surrogate pair.
TEST(CodePageWindows1252, LackingCharactersTakeWindowsBestFit) {
    EXPECT_EQ(ToAnsi(u"\u0100\u0101\u0107\u0141\u0142\u0131\u0180\u0110\u221E\u2212\u2044"),
              "AacLlib\xD0\x38-/");
    EXPECT_EQ(ToAnsi(u"\u2002\u3000\uFF21\u2013\u20AC\u2122"), "  A\x96\x80\x99");
    EXPECT_EQ(ToAnsi(u"\u0394\u0431\u1E00\u0218\u01C4\u4E2D\uFFFD\xD800\xDC00"), "?????????");
    EXPECT_EQ(ToAnsi(u"\xD83D\xDE00x\xD835\xDC00"), "??x??");
}

TEST(CodePageSwitch, Utf8AndBack) {
    CodePageGuard guard;
    EXPECT_FALSE(SetAnsiCodePage("no-such-charset"));
    EXPECT_EQ(ToAnsi(u"\u00E9"), "\xE9"); // unchanged after a refused name
    ASSERT_TRUE(SetAnsiCodePage("UTF-8"));
    EXPECT_EQ(ToAnsi(u"\u00E9\u4E2D\xD83D\xDE00"), "\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(ToAnsi(u"a\xD800\x62"), "a\xEF\xBF\xBD\x62");
    EXPECT_EQ(FromAnsi("a\xFF\x62"), u"a\uFFFDb");
    EXPECT_EQ(FromAnsi("\xE4\xB8x"), u"\uFFFDx");
    // The narrow comparisons read the new code page.
    EXPECT_EQ(lstrcmpiA("\xC3\xA9", "\xC3\x89"), 0);
    EXPECT_LT(lstrcmpA("e", "\xC3\xA9"), 0);
    ASSERT_TRUE(SetAnsiCodePage("windows-1250"));
    EXPECT_EQ(FromAnsi("\x8A\xB9"), u"\u0160\u0105");
}

TEST(CodePageUtf8, InvalidInputBecomesReplacement) {
    EXPECT_EQ(Utf16ToUtf8(std::u16string(u"a\xD800\x62")), "a\xEF\xBF\xBD\x62");
    EXPECT_EQ(Utf16ToUtf8(std::u16string(u"a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(Utf8ToUtf16("a\xFF\x62"), u"a\uFFFDb");
    EXPECT_EQ(Utf8ToUtf16("\xC0\xAF"), u"\uFFFD\uFFFD"); // overlong
}
