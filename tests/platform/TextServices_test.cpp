#include "qv/platform/CodePage.h"
#include "qv/platform/TextHash.h"
#include "qv/platform/TextServices.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <utility>

using namespace qv::platform;

namespace {

// Restores the root collation however a test ends.
struct LocaleGuard {
    ~LocaleGuard() { SetCollationLocale(""); }
};

// Random ASCII text biased towards what breaks a table-driven comparison: case pairs,
// punctuation that sorts between letters, digits, spaces, and now and then a control character
// or a non-ASCII unit that must leave the comparison to ICU. A text's partner is often a near
// miss of it (extended, case flipped, half kept), so comparisons get past the first unit.
struct TextGenerator {
    std::mt19937 rng{1234};
    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); }

    std::u16string Next() {
        static constexpr char16_t common[] = u"aAbBcChHsSzZ019 _-.,'!~`^|{}@";
        std::u16string s;
        for (int i = Pick(9); i > 0; --i) {
            int const kind = Pick(100);
            s += kind < 60   ? common[Pick(std::size(common) - 1)]
                 : kind < 96 ? static_cast<char16_t>(0x20 + Pick(0x5F))
                 : kind < 98 ? static_cast<char16_t>(1 + Pick(0x1F))
                             : u"\u00E9\u00C4\u0301\u00DF"[Pick(4)];
        }
        return s;
    }
    std::u16string Partner(std::u16string a) {
        int const kind = Pick(4);
        if (kind == 1 && !a.empty()) {
            char16_t& c = a[static_cast<std::size_t>(Pick(static_cast<int>(a.size())))];
            c = IsAlphaW(c) ? static_cast<char16_t>(c ^ 0x20) : c;
            return a;
        }
        return kind == 0 ? a + Next() : kind == 2 ? a.substr(0, a.size() / 2) + Next() : Next();
    }
};

// Unicode's simple case folding, unit by unit: the generator's text has no exceptions to it.
std::u16string Folded(std::u16string s) {
    for (char16_t& c : s)
        c = static_cast<char16_t>(u_foldCase(c, U_FOLD_CASE_DEFAULT));
    return s;
}

// Text for the narrow forms: every non-ASCII unit becomes é, 0xE9 in Windows-1252.
std::u16string Latin(std::u16string s) {
    std::replace_if(
        s.begin(), s.end(), [](char16_t c) { return c >= 0x80; }, u'\u00E9');
    return s;
}

} // namespace

TEST(TextServicesLength, CountsToTerminatorAtEveryAlignment) {
    EXPECT_EQ(lstrlenW(nullptr), 0);
    // Every start offset and length around the word size, so the word scan meets the
    // terminator in each lane and the unaligned head is exercised too.
    std::u16string const buffer(64, u'x');
    for (std::size_t start = 0; start < 8; ++start)
        for (std::size_t length = 0; length < 40; ++length) {
            std::u16string text = buffer;
            text[start + length] = 0;
            ASSERT_EQ(lstrlenW(text.c_str() + start), static_cast<int>(length))
                << start << " " << length;
        }
    // Units with the high bit set or a zero byte must not look like terminators.
    EXPECT_EQ(lstrlenW(u"\x8000\x8000\xFFFF\x0001\x0100\x8001\xFF00\x0100\x0001"), 9);
}

// What Windows answers where ICU or the obvious answer differ (docs/text-services.md lists
// where ours is meant to differ).
TEST(TextServicesCompare, AgreesWithWindowsOnCaseAccentsAndNulls) {
    struct Row {
        char16_t const* a;
        char16_t const* b;
        int cmp;
        int icmp;
    } const rows[] = {
        {u"a", u"A", -1, 0},
        {u"a_b", u"a b", 1, 1},
        {u"\u00C4b", u"\u00E4B", 1, 0},
        {nullptr, u"", -1, -1},
        // Case-blind ignores case and nothing else: width, compatibility forms, no-break
        // spaces keep keys apart.
        {u"\uFF21", u"A", 1, 1},
        {u"\uFF21", u"\uFF41", 1, 0},
        {u"\u00B9", u"1", 1, 1},
        {u"\u00A0", u" ", 1, 1},
        // Only canonically equivalent texts are equal; ICU would ignore the next two.
        {u"\u200B", u"", 1, 1},
        {u"a", u"a\x01", -1, -1},
        {u"e\u0301", u"\u00E9", 0, 0},
        {u"\u212A", u"K", 0, 0},
        // Case forms that fold, and variants that do not.
        {u"\u212A", u"k", 1, 0},
        {u"\u03C2", u"\u03C3", 1, 0},
        {u"\u1E9E", u"\u00DF", 1, 0},
        {u"\u017F", u"s", 1, 1},
        {u"\u0131", u"i", 1, 1},
    };
    for (Row const& r : rows) {
        SCOPED_TRACE(testing::PrintToString(r.a));
        EXPECT_EQ(lstrcmpW(r.a, r.b), r.cmp);
        EXPECT_EQ(lstrcmpW(r.b, r.a), -r.cmp);
        EXPECT_EQ(lstrcmpiW(r.a, r.b), r.icmp);
        EXPECT_EQ(StrCmpIW(r.a, r.b), r.icmp);
    }
    EXPECT_EQ(lstrcmpA("e", "\xE9"), -1); // Windows-1252 bytes read as their characters
    EXPECT_EQ(lstrcmpiA("\xC4", "\xE4"), 0);
    EXPECT_EQ(lstrcmpiA("\xB9", "1"), 1);
    EXPECT_EQ(lstrcmpiA("\xA0", " "), 1);
}

// Where the order differs from Windows, equality still must not: keys Windows keeps apart
// stay apart in a case-blind map.
TEST(TextServicesCompare, CaseBlindKeepsApartWhatWindowsKeepsApart) {
    std::pair<char16_t const*, char16_t const*> const apart[] = {
        {u"\u2160", u"I"}, {u"\u00B5", u"\u03BC"}, {u"\u0131", u"I"}, {u"\u00AA", u"a"}};
    for (auto [a, b] : apart) {
        EXPECT_NE(lstrcmpiW(a, b), 0) << testing::PrintToString(a);
        EXPECT_EQ(lstrcmpiW(a, b), -lstrcmpiW(b, a)) << testing::PrintToString(a);
    }
    EXPECT_EQ(StrCmpNIW(u"a1", u"a10", 2), 0);
    EXPECT_EQ(StrCmpNIW(u"x", u"x ", 2), -1);
    EXPECT_EQ(StrCmpNIW(u"\u00C4b", u"\u00E4Bx", 2), 0);
}

// The rank tables must give exactly ICU's answer (case-blind: on case-folded text), so that a mix
// of table and ICU answers within one std::map stays a strict weak order.
TEST(TextServicesCompare, AsciiFastPathGivesIcusAnswer) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UCollator, void (*)(UCollator*)> coll(ucol_open("", &status), &ucol_close);
    ASSERT_TRUE(U_SUCCESS(status));
    ucol_setStrength(coll.get(), UCOL_IDENTICAL);
    auto icu = [&](std::u16string const& a, std::u16string const& b) {
        int const r = ucol_strcoll(coll.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                                   static_cast<int32_t>(b.size()));
        return (r > 0) - (r < 0);
    };
    TextGenerator gen;
    for (int i = 0; i < 20000; ++i) {
        std::u16string const a = gen.Next();
        std::u16string const b = gen.Partner(a);
        std::u16string const la = Latin(a), lb = Latin(b);
        std::string const na(la.begin(), la.end()), nb(lb.begin(), lb.end());
        SCOPED_TRACE(testing::PrintToString(a) + " " + testing::PrintToString(b));
        ASSERT_EQ(lstrcmpW(a.c_str(), b.c_str()), icu(a, b));
        ASSERT_EQ(lstrcmpiW(a.c_str(), b.c_str()), icu(Folded(a), Folded(b)));
        ASSERT_EQ(lstrcmpA(na.c_str(), nb.c_str()), icu(la, lb));
        ASSERT_EQ(lstrcmpiA(na.c_str(), nb.c_str()), icu(Folded(la), Folded(lb)));
    }
}

TEST(TextServicesCompare, LocaleChangesTheOrder) {
    LocaleGuard guard;
    EXPECT_LT(lstrcmpW(u"\u00E4", u"z"), 0); // root: ä is a variant of a
    ASSERT_TRUE(SetCollationLocale("sv"));
    EXPECT_GT(lstrcmpW(u"\u00E4", u"z"), 0); // Swedish: ä after z
    ASSERT_TRUE(SetCollationLocale("da"));
    EXPECT_GT(lstrcmpW(u"a", u"A"), 0); // Danish: upper case first, also on the fast path
    EXPECT_GT(lstrcmpA("ab", "Ab"), 0);
    EXPECT_FALSE(SetCollationLocale("xx-nonsense"));
    EXPECT_GT(lstrcmpW(u"a", u"A"), 0); // the previous collator stays
}

TEST(TextServicesSearch, WideAsShlwapiAnswers) {
    char16_t const* s = u"Hello World";
    EXPECT_EQ(StrChrW(s, 0), s + 11); // the terminator is found, unlike in the other forms
    EXPECT_EQ(StrChrIW(s, 0), nullptr);
    EXPECT_EQ(StrRChrW(s, s + 5, u'o'), s + 4);
    EXPECT_EQ(StrRChrW(s, nullptr, 0), nullptr);
    EXPECT_EQ(StrStrW(s, u""), nullptr);
    char16_t const* overlap = u"aaab";
    EXPECT_EQ(StrStrIW(overlap, u"AAB"), overlap + 1);
    // Case folding beyond ASCII, unit by unit.
    char16_t const* eu = u"x\u00DFy\u00C4\u0130\u03A3\u212A";
    EXPECT_EQ(StrChrIW(eu, u'\u00E4'), eu + 3);
    EXPECT_EQ(StrStrIW(eu, u"\u03C2"), eu + 5); // final sigma folds to sigma
    EXPECT_EQ(StrStrIW(eu, u"SS"), nullptr);    // no full folding: ß is one unit
    EXPECT_EQ(StrChrIW(eu, u'i'), nullptr);     // İ has no simple folding
    EXPECT_EQ(StrStrIW(eu, u"k"), eu + 6);
}

TEST(TextServicesSearch, NarrowFoldsThroughTheCodePage) {
    char const* a = "Hello World";
    EXPECT_EQ(StrChrA(a, 0), nullptr);
    EXPECT_EQ(StrChrIA(a, 0x100 + 'w'), a + 6); // only the low byte counts
    EXPECT_EQ(StrStrIA(a, ""), nullptr);
    char const* latin = "x\x9F\xE4";
    EXPECT_EQ(StrChrIA(latin, 0xFF), latin + 1); // ÿ and Ÿ
    EXPECT_EQ(StrStrIA(latin, "\xC4"), latin + 2);

    ASSERT_TRUE(SetAnsiCodePage("UTF-8"));
    char const* utf8 = "x\xC3\x84y"; // xÄy: bytes of a sequence only match themselves
    EXPECT_EQ(StrStrIA(utf8, "\xC3\x84Y"), utf8 + 1);
    EXPECT_EQ(StrStrIA(utf8, "\xC3\xA4"), nullptr);
    ASSERT_TRUE(SetAnsiCodePage("windows-1252"));
    EXPECT_EQ(StrStrIA(latin, "\xC4"), latin + 2);
}

TEST(TextServicesRuntime, BoundedAndCaseBlindComparisons) {
    // Values as the runtime returns them: the difference of the first differing units.
    EXPECT_EQ(wcsncmp16(u"abcX", u"abcY", 3), 0);
    EXPECT_EQ(wcsncmp16(u"\xFFFF", u"a", 1), 65438);
    EXPECT_EQ(_wcsnicmp16(u"\u00C4", u"\u00E4", 1), -32); // only A to Z fold
    EXPECT_EQ(_strnicmp("Hello1", "hELLO2", 5), 0);
    EXPECT_EQ(_strnicmp("_", "A", 1), -2); // letters fold to lower case, so '_' < 'a'
    EXPECT_GT(_stricmp("\xE9", "z"), 0);   // bytes above 0x7F compare unsigned
}

// The runtime's "C" locale knows nothing beyond ASCII, whatever the code page; its wide
// classes and case mappings are Windows' own, probed where they and Unicode could disagree
// (unit_tables_probe.cpp, every BMP unit).
TEST(TextServicesClasses, AsTheWindowsRuntimeClassifiesAndMaps) {
    EXPECT_FALSE(IsAlphaA('\xE9') || IsAlnumA('\xB2') || IsDigitA('\xB2') || IsSpaceA('\xA0'));
    EXPECT_FALSE(IsPrintA('\x7F') || IsPrintA('\xE9') || IsSpaceA('\x85'));
    EXPECT_EQ(ToUpperA('\xE9'), '\xE9');
    struct Row {
        char16_t c;
        bool alpha, digit, print, space;
    } const rows[] = {
        {u'\x85', 0, 0, 0, 0},   {u'\xA0', 0, 0, 1, 1},   {u'\xAA', 0, 0, 1, 0},
        {u'\xB2', 0, 1, 1, 0},   {u'\xDF', 1, 0, 1, 0},   {u'\u0660', 0, 1, 1, 0},
        {u'\u2074', 0, 0, 0, 0}, {u'\u1680', 0, 0, 0, 1}, {u'\u200B', 0, 0, 0, 0},
        {u'\u3000', 0, 0, 1, 1}, {u'\xD800', 0, 0, 0, 0}, {u'\u0301', 0, 0, 0, 0},
        {u'\u2160', 1, 0, 1, 0}, {u'\xBC', 0, 0, 1, 0},
    };
    for (Row const& r : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << unsigned(r.c));
        EXPECT_EQ(IsAlphaW(r.c), r.alpha);
        EXPECT_EQ(IsDigitW(r.c), r.digit);
        EXPECT_EQ(IsAlnumW(r.c), r.alpha || r.digit);
        EXPECT_EQ(IsPrintW(r.c), r.print);
        EXPECT_EQ(IsSpaceW(r.c), r.space);
    }
    // Unicode's simple mapping only where it leads to a partner that maps back.
    struct Mapping {
        char16_t c, upper, lower;
    } const mappings[] = {
        {u'\u00FF', u'\u0178', u'\u00FF'}, {u'\u03A3', u'\u03A3', u'\u03C3'},
        {u'\u00DF', u'\u00DF', u'\u00DF'}, {u'\xD800', u'\xD800', u'\xD800'},
        {u'\u0131', u'\u0131', u'\u0131'}, {u'\u212A', u'\u212A', u'\u212A'},
        {u'\u01C4', u'\u01C4', u'\u01C6'},
    };
    for (Mapping const& m : mappings) {
        EXPECT_EQ(ToUpperW(m.c), m.upper) << std::hex << unsigned(m.c);
        EXPECT_EQ(ToLowerW(m.c), m.lower) << std::hex << unsigned(m.c);
    }
}

// Texts that compare equal must hash alike, whatever their composition and case.
TEST(TextServicesHash, TextsThatCompareEqualHashAlike) {
    EXPECT_EQ(HashForCmpW(u"ab\u00e9t\u00e9"), HashForCmpW(u"abe\u0301te\u0301"));
    EXPECT_EQ(HashForCmpW(u"\u212b"), HashForCmpW(u"\u00c5"));
    EXPECT_EQ(HashForCmpIW(u"\u00c4rger"), HashForCmpIW(u"a\u0308RGER"));
    EXPECT_EQ(HashForCmpW(nullptr), HashForCmpW(u""));
    EXPECT_NE(HashForCmpW(u"key1"), HashForCmpW(u"key2"));
    EXPECT_NE(HashForCmpIW(u"\uff21"), HashForCmpIW(u"A")); // width stays apart
}
