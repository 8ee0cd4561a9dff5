#include "qv/platform/CodePage.h"

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
} // namespace

TEST(CodePageConvention, LengthsAndSizes) {
    char buffer[16];
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, nullptr, 0), 4);
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, buffer, 16), 4);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(WideCharToMultiByte(u"abc", 3, buffer, 3), 3);
    EXPECT_EQ(WideCharToMultiByte(u"abc", -1, buffer, 3), 0);
    EXPECT_EQ(WideCharToMultiByte(u"abc", 0, buffer, 16), 0);
    EXPECT_EQ(WideCharToMultiByte(nullptr, -1, buffer, 16), 0);
    char16_t wide[16];
    EXPECT_EQ(MultiByteToWideChar("abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar("abc", -1, wide, 16), 4);
    EXPECT_EQ(std::u16string(wide), u"abc");
    EXPECT_EQ(MultiByteToWideChar("abc", -1, wide, 2), 0);
    EXPECT_EQ(MultiByteToWideChar("abc", -2, wide, 16), 0);
}

TEST(CodePageWindows1252, ReadsEveryByte) {
    EXPECT_EQ(FromAnsi("\x80\xE9\x9F"), u"\u20AC\u00E9\u0178");
    EXPECT_EQ(FromAnsi("\x81\x8D\x8F\x90\x9D"), u"\u0081\u008D\u008F\u0090\u009D");
    EXPECT_EQ(ToAnsi(u"\u20AC\u00E9\u2013\u0081"), "\x80\xE9\x96\x81");
}

TEST(CodePageWindows1252, UnmappableBecomesBestFitOrQuestionMark) {
    EXPECT_EQ(ToAnsi(u"\u0100"), "A");
    EXPECT_EQ(ToAnsi(u"\u4E2D"), "?");
    EXPECT_EQ(ToAnsi(u"\xD800x"), "?x");
}

TEST(CodePageUtf8, InvalidInputBecomesReplacement) {
    EXPECT_EQ(Utf16ToUtf8(u"a\u00E9\u4E2D"), "a\xC3\xA9\xE4\xB8\xAD");
    EXPECT_EQ(Utf16ToUtf8(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf16ToUtf8(std::u16string(u"a\xD800"
                                         u"b")),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(Utf8ToUtf16("a\xC3\xA9"), u"a\u00E9");
    EXPECT_EQ(Utf8ToUtf16("a\xFF"
                          "b"),
              u"a\uFFFDb");
    EXPECT_EQ(Utf8ToUtf16("\xC3"), u"\uFFFD");
    EXPECT_EQ(Utf8ToUtf16(""), u"");
    EXPECT_EQ(Utf16ToUtf8(u""), "");
}
