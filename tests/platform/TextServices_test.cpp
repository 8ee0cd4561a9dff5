#include "qv/platform/TextServices.h"

#include <gtest/gtest.h>
#include <string>

using namespace qv::platform;

TEST(TextServicesLength, CountsToTerminatorAtEveryAlignment) {
    EXPECT_EQ(lstrlenW(nullptr), 0);
    // Every start offset and length around the word size, so the aligned scan meets the
    // terminator in each lane of a word and the head loop is exercised too.
    std::u16string buffer(64, u'x');
    for (std::size_t start = 0; start < 8; ++start)
        for (std::size_t length = 0; length < 40; ++length) {
            std::u16string text = buffer;
            text[start + length] = 0;
            ASSERT_EQ(lstrlenW(text.c_str() + start), static_cast<int>(length))
                << start << " " << length;
        }
    // Units with the high bit set must not look like terminators.
    std::u16string high(20, u'\x8000');
    EXPECT_EQ(lstrlenW(high.c_str()), 20);
    std::u16string mixed = u"\xFFFF\x0001\x0100\x8001\xFF00";
    EXPECT_EQ(lstrlenW(mixed.c_str()), 5);
}

TEST(TextServicesCompare, NullsOrderFirst) {
    EXPECT_EQ(lstrcmpW(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpW(nullptr, u""), 0);
    EXPECT_GT(lstrcmpW(u"", nullptr), 0);
    EXPECT_LT(lstrcmpiW(nullptr, u"a"), 0);
    EXPECT_EQ(lstrcmpA(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpiA(nullptr, ""), 0);
    EXPECT_GT(lstrcmpA("a", nullptr), 0);
}

TEST(TextServicesCompare, CaseOrderAndBlindness) {
    EXPECT_LT(lstrcmpW(u"a", u"A"), 0);
    EXPECT_LT(lstrcmpW(u"A", u"b"), 0);
    EXPECT_LT(lstrcmpW(u"ab", u"Ab"), 0);
    EXPECT_LT(lstrcmpW(u"aB", u"Ab"), 0); // the first case difference decides
    EXPECT_LT(lstrcmpW(u"Ab", u"ac"), 0); // but letters come before case
    EXPECT_EQ(lstrcmpiW(u"AbC", u"aBc"), 0);
    EXPECT_EQ(lstrcmpiA("AbC", "aBc"), 0);
    EXPECT_LT(lstrcmpiW(u"abc", u"ABD"), 0);
    EXPECT_LT(lstrcmpW(u"", u"a"), 0);
    EXPECT_EQ(lstrcmpW(u"", u""), 0);
    EXPECT_LT(lstrcmpW(u"a", u"ab"), 0);
}

TEST(TextServicesCompare, AccentsAreSecondaryNotIgnored) {
    EXPECT_LT(lstrcmpW(u"e", u"\u00E9"), 0);
    EXPECT_LT(lstrcmpW(u"\u00E9", u"f"), 0);
    EXPECT_NE(lstrcmpiW(u"e", u"\u00E9"), 0);
    EXPECT_EQ(lstrcmpiW(u"\u00C4b", u"\u00E4B"), 0);
    // Windows-1252 bytes are read as their characters.
    EXPECT_LT(lstrcmpA("e", "\xE9"), 0);
    EXPECT_EQ(lstrcmpiA("\xC4", "\xE4"), 0);
}

TEST(TextServicesSearch, FindsAndRejects) {
    char16_t const* s = u"Hello World";
    EXPECT_EQ(StrChrW(s, u'o'), s + 4);
    EXPECT_EQ(StrChrW(s, u'O'), nullptr);
    EXPECT_EQ(StrChrIW(s, u'O'), s + 4);
    EXPECT_EQ(StrRChrW(s, nullptr, u'o'), s + 7);
    EXPECT_EQ(StrRChrW(s, s + 5, u'o'), s + 4);
    EXPECT_EQ(StrStrW(s, u"World"), s + 6);
    EXPECT_EQ(StrStrW(s, u"world"), nullptr);
    EXPECT_EQ(StrStrIW(s, u"WORLD"), s + 6);
    EXPECT_EQ(StrStrIW(s, u"WORLDS"), nullptr);
    EXPECT_EQ(StrStrW(nullptr, u"a"), nullptr);
    EXPECT_EQ(StrStrW(s, nullptr), nullptr);
    EXPECT_EQ(StrChrW(nullptr, u'a'), nullptr);
    char16_t const* umlaut = u"x\u00C4RGER";
    EXPECT_EQ(StrStrIW(umlaut, u"\u00E4rg"), umlaut + 1);
    char const* a = "Hello World";
    EXPECT_EQ(StrChrA(a, 'W'), a + 6);
    EXPECT_EQ(StrChrIA(a, 'w'), a + 6);
    EXPECT_EQ(StrStrA(a, "lo W"), a + 3);
    EXPECT_EQ(StrStrIA(a, "LO w"), a + 3);
    EXPECT_EQ(StrStrIA(a, "xyz"), nullptr);
}

TEST(TextServicesRuntime, BoundedAndCaseBlindComparisons) {
    EXPECT_EQ(wcsncmp16(u"abcX", u"abcY", 3), 0);
    EXPECT_LT(wcsncmp16(u"abcX", u"abcY", 4), 0);
    EXPECT_GT(wcsncmp16(u"\xFFFF", u"a", 1), 0);
    EXPECT_EQ(_wcsnicmp16(u"ABC", u"abc", 3), 0);
    EXPECT_NE(_wcsnicmp16(u"\u00C4", u"\u00E4", 1), 0);
    EXPECT_EQ(_stricmp("Hello", "hELLO"), 0);
    EXPECT_EQ(_strnicmp("Hello1", "hELLO2", 5), 0);
    // Letters are folded to lower case before comparing, so '_' (0x5F) sorts before 'A'.
    EXPECT_LT(_stricmp("_", "A"), 0);
    EXPECT_GT(_stricmp("\xE9", "z"), 0); // bytes compare unsigned
}

TEST(TextServicesClasses, NarrowIsAsciiOnly) {
    EXPECT_EQ(ToUpperA('a'), 'A');
    EXPECT_EQ(ToUpperA('\xE9'), '\xE9');
    EXPECT_EQ(ToLowerA('Z'), 'z');
    EXPECT_TRUE(IsAlphaA('q'));
    EXPECT_FALSE(IsAlphaA('\xE9'));
    EXPECT_FALSE(IsAlphaA('@'));
    EXPECT_FALSE(IsAlphaA('['));
    EXPECT_TRUE(IsDigitA('7'));
    EXPECT_TRUE(IsAlnumA('7'));
    EXPECT_TRUE(IsSpaceA('\v'));
    EXPECT_FALSE(IsSpaceA('\xA0'));
    EXPECT_TRUE(IsPrintA(' '));
    EXPECT_FALSE(IsPrintA('\x7F'));
}

TEST(TextServicesClasses, WideUsesUnicodeProperties) {
    EXPECT_EQ(ToUpperW(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(ToLowerW(u'\u0414'), u'\u0434');
    EXPECT_EQ(ToUpperW(u'\xD800'), u'\xD800');
    EXPECT_TRUE(IsAlphaW(u'\u03B1'));
    EXPECT_TRUE(IsDigitW(u'\u0663'));
    EXPECT_TRUE(IsSpaceW(u'\u3000'));
    EXPECT_FALSE(IsAlphaW(u'\xDC00'));
}
