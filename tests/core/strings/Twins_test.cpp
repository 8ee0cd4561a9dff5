// The documented differences between WString and BString, and what only one twin has.
#include "StringTestSupport.h"

#include <cstdlib>
#include <map>
#include <qv/platform/CodePage.h>
#include <vector>

TEST(Twins, SearchReportsTheirOwnNotFoundValue) {
    EXPECT_EQ(BString("abc").Search("x"), 65535u);
    EXPECT_EQ(WString(u"abc").Search(u"x"), ~0ull);
    EXPECT_EQ(WString(u"abc").Search(u'c', 3), ~0ull) << "from at the end";
}

TEST(Twins, StrUnsharesOnlyInTheWideTwin) {
    BString narrow("abc");
    BString narrowCopy = narrow;
    EXPECT_EQ(narrow.Str(), narrowCopy.Str()) << "BString::Str hands out the shared text";

    WString wide(u"abc");
    WString wideCopy = wide;
    wide.Str()[0] = u'X';
    EXPECT_EQ(wideCopy, WString(u"abc"));
    EXPECT_NE(WString().Str(), nullptr) << "WString::Str always gives writable text";
    EXPECT_EQ(WString()[5], 0) << "indexing a null wide string gives 0";
}

// Equality, order and replacing a character by itself follow each twin's own rule.
TEST(Twins, EqualityOrderAndReplaceFollowEachTwinsRule) {
    // Precomposed and decomposed e-acute are one letter to the collator; BString compares bytes.
    EXPECT_TRUE(WString(u"caf\u00e9") == WString(u"cafe\u0301"));
    EXPECT_FALSE(BString("cafe") == BString("cafE"));
    EXPECT_TRUE(BString("cafe").IEndsWith("E"));
    EXPECT_TRUE(WString() == static_cast<char16_t const*>(nullptr));
    EXPECT_TRUE(BString("a") < BString("\xe9")) << "unsigned bytes";
    EXPECT_TRUE(BString("B") < BString("a") && WString(u"a") < WString(u"B"))
        << "the wide order is the locale's";
    WString wide(u"abc");
    EXPECT_TRUE(wide.Replace(u'x', u'x')) << "WString says yes at once";
    BString narrow("abc");
    EXPECT_FALSE(narrow.Replace('x', 'x')) << "BString only when it occurs";
    EXPECT_TRUE(narrow.Replace('a', 'a'));
}

TEST(WString, WideOnlyOperations) {
    WString s;
    char16_t unterminated[2] = {u'x', u'y'};
    s.CopyN(2, unterminated);
    EXPECT_EQ(s, WString(u"xy"));

    EXPECT_TRUE(!WString(u"caf\u00e9").Includes16bitChars() &&
                WString(u"\u0100").Includes16bitChars());

    WString r(u"0123456789");
    r.ReplaceAt(u"AB", 2, 5);
    EXPECT_EQ(r, WString(u"01AB789")) << "five units at 2 become AB";
    r.ReplaceAt(u"Z", 7, 0);
    EXPECT_EQ(r, WString(u"01AB789Z"));
}

// The conversions themselves are the code page's (CodePage_test); here what the classes add:
// both directions, null strings staying null, and a view's terminator ending the text.
TEST(WString, ConvertsToAndFromTheAnsiCodePageAndUtf8) {
    WString const wide(u"Gr\u00fc\u00dfe \u20ac");
    BString const narrow = wide.AsString();
    EXPECT_EQ(std::string(narrow.CStr()), "Gr\xfc\xdf\x65 \x80");
    EXPECT_EQ(WString(narrow), wide);
    EXPECT_EQ(BString(u"Gr\u00fc\u00dfe \u20ac"), narrow);
    EXPECT_EQ(WString::AsChar(u'\u4e2d'), '?');
    EXPECT_EQ(WString(BString()).CStr(0), nullptr);
    EXPECT_EQ(BString(static_cast<char16_t const*>(nullptr)).CStr(0), nullptr);
    WString const text = WString::FromUtf8("S\xc3\xbc \xf0\x9f\x93\xb7");
    EXPECT_EQ(text.Length(), 5u) << "the camera emoji is a surrogate pair";
    EXPECT_EQ(text.ToUtf8(), "S\xc3\xbc \xf0\x9f\x93\xb7");
    EXPECT_EQ(WString(std::u16string_view(u"ab\0cd", 5)), WString(u"ab"));
}

TEST(WString, CaseBlindComparatorsOrderMapsAndQSort) {
    std::map<WString, int, WString::ILess> keys;
    keys[WString(u"Exposure")] = 1;
    keys[WString(u"EXPOSURE")] = 2;
    EXPECT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys.begin()->second, 2);
    std::vector<WString> v{WString(u"b"), WString(u"C"), WString(u"a")};
    std::qsort(v.data(), v.size(), sizeof(WString), WString::ICmpForQSort);
    EXPECT_EQ(v, (std::vector<WString>{WString(u"a"), WString(u"b"), WString(u"C")}));
    std::map<BString, int, StrILess> narrowKeys{{BString("Key"), 1}, {BString("KEY"), 2}};
    EXPECT_EQ(narrowKeys.size(), 1u);
    // The translation maps key wide text with the same comparator.
    std::map<WString, WString, StrILess> wideKeys{{WString(u"$Key"), WString(u"a")},
                                                  {WString(u"$KEY"), WString(u"b")}};
    EXPECT_EQ(wideKeys.size(), 1u);
    EXPECT_EQ(wideKeys.begin()->first, WString(u"$Key")) << "the first form added stays";
}
