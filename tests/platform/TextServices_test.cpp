#include "qv/platform/CodePage.h"
#include "qv/platform/TextServices.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unicode/ucol.h>
#include <vector>

using namespace qv::platform;

namespace {

int Sign(int v) {
    return (v > 0) - (v < 0);
}

// Restores the root collation however a test ends.
struct LocaleGuard {
    ~LocaleGuard() { SetCollationLocale(""); }
};

// Random ASCII text biased towards what breaks a table-driven comparison: case pairs,
// punctuation that sorts between letters, digits, spaces, shared prefixes, and now and then a
// control character or a non-ASCII unit that must leave the comparison to ICU.
class TextGenerator {
public:
    explicit TextGenerator(unsigned seed) : rng_(seed) {}

    std::u16string Next() {
        static constexpr char16_t common[] = u"aAbBcChHsSzZ019 _-.,'!~`^|{}@";
        std::u16string s;
        int const length = Pick(9);
        for (int i = 0; i < length; ++i) {
            int const kind = Pick(100);
            if (kind < 60)
                s += common[Pick(sizeof common / sizeof common[0] - 1)];
            else if (kind < 96)
                s += static_cast<char16_t>(0x20 + Pick(0x5F));
            else if (kind < 98)
                s += static_cast<char16_t>(1 + Pick(0x1F));
            else
                s += u"\u00E9\u00C4\u0301\u00DF"[Pick(4)];
        }
        return s;
    }

    // A partner for a: often a near miss of it, so that comparisons get past the first unit.
    std::u16string Partner(std::u16string const& a) {
        switch (Pick(5)) {
        case 0:
            return a + Next();
        case 1: {
            std::u16string b = a;
            if (!b.empty()) {
                char16_t& c = b[static_cast<std::size_t>(Pick(static_cast<int>(b.size())))];
                if (c >= u'a' && c <= u'z')
                    c = static_cast<char16_t>(c - 32);
                else if (c >= u'A' && c <= u'Z')
                    c = static_cast<char16_t>(c + 32);
            }
            return b;
        }
        case 2:
            return a.substr(0, a.size() / 2) + Next();
        default:
            return Next();
        }
    }

private:
    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
    std::mt19937 rng_;
};

class IcuCollator {
public:
    IcuCollator(char const* locale, UColAttributeValue strength) {
        UErrorCode status = U_ZERO_ERROR;
        coll_ = ucol_open(locale, &status);
        EXPECT_TRUE(U_SUCCESS(status)) << locale;
        ucol_setStrength(coll_, strength);
    }
    ~IcuCollator() { ucol_close(coll_); }
    int operator()(std::u16string const& a, std::u16string const& b) const {
        return Sign(ucol_strcoll(coll_, a.data(), static_cast<int32_t>(a.size()), b.data(),
                                 static_cast<int32_t>(b.size())));
    }

private:
    UCollator* coll_ = nullptr;
};

std::string Narrow(std::u16string const& s) {
    std::string out;
    for (char16_t c : s)
        out += c < 0x80 ? static_cast<char>(c) : '\xE9';
    return out;
}

std::u16string Widen(std::string const& s) {
    std::u16string out;
    for (char c : s)
        out += static_cast<unsigned char>(c) < 0x80 ? static_cast<char16_t>(c) : u'\u00E9';
    return out;
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
    std::u16string const high(20, u'\x8000');
    EXPECT_EQ(lstrlenW(high.c_str()), 20);
    std::u16string const mixed = u"\xFFFF\x0001\x0100\x8001\xFF00\x0100\x0001";
    EXPECT_EQ(lstrlenW(mixed.c_str()), 7);
}

// What Windows answers, where ours is meant to agree (docs/text-services.md lists the rest).
TEST(TextServicesCompare, AgreesWithWindowsOnCaseAccentsAndNulls) {
    struct Row {
        char16_t const* a;
        char16_t const* b;
        int cmp;
        int icmp;
    } const rows[] = {
        {u"a", u"A", -1, 0},        {u"ab", u"AB", -1, 0},     {u"aB", u"Ab", -1, 0},
        {u"Ab", u"ac", -1, -1},     {u"a_b", u"ab", -1, -1},   {u"a b", u"ab", -1, -1},
        {u"a.b", u"ab", -1, -1},    {u"a_b", u"a b", 1, 1},    {u"a10", u"a9", -1, -1},
        {u"a1", u"a10", -1, -1},    {u"\u00E9", u"e", 1, 1},   {u"\u00E9", u"f", -1, -1},
        {u"\u00E9", u"E", 1, 1},    {u"\u00C4b", u"ab", 1, 1}, {u"\u00C4b", u"\u00E4B", 1, 0},
        {u"\u00DF", u"st", -1, -1}, {u"", u"", 0, 0},          {u"", u"a", -1, -1},
        {u"_", u"a", -1, -1},       {u"0", u"a", -1, -1},      {u" ", u"_", -1, -1},
        {u"Z", u"a", 1, 1},         {u"a", u"\u0101", -1, -1}, {u"Node1", u"node1", 1, 0},
        {u"ABC", u"abd", -1, -1},   {u"x", u"x ", -1, -1},     {u"1", u"\u00B2", -1, -1},
        {nullptr, nullptr, 0, 0},   {nullptr, u"", -1, -1},    {u"", nullptr, 1, 1},
    };
    for (Row const& r : rows) {
        EXPECT_EQ(lstrcmpW(r.a, r.b), r.cmp) << testing::PrintToString(r.a);
        EXPECT_EQ(lstrcmpiW(r.a, r.b), r.icmp) << testing::PrintToString(r.a);
        EXPECT_EQ(lstrcmpW(r.b, r.a), -r.cmp) << testing::PrintToString(r.a);
        EXPECT_EQ(StrCmpIW(r.a, r.b), r.icmp) << testing::PrintToString(r.a);
    }
    EXPECT_EQ(lstrcmpA(nullptr, ""), -1);
    EXPECT_EQ(lstrcmpiA("a", nullptr), 1);
    EXPECT_EQ(lstrcmpA("e", "\xE9"), -1); // Windows-1252 bytes read as their characters
    EXPECT_EQ(lstrcmpiA("\xC4", "\xE4"), 0);
    EXPECT_EQ(lstrcmpA("a_b", "a-b"), -1);
}

TEST(TextServicesCompare, StrCmpNIWComparesOnlyThePrefixes) {
    EXPECT_EQ(StrCmpNIW(u"a1", u"a10", 2), 0);
    EXPECT_EQ(StrCmpNIW(u"ABC", u"abd", 2), 0);
    EXPECT_EQ(StrCmpNIW(u"Ab", u"ac", 2), -1);
    EXPECT_EQ(StrCmpNIW(u"x", u"x ", 2), -1);
    EXPECT_EQ(StrCmpNIW(u"ab", u"ac", 0), 0);
    EXPECT_EQ(StrCmpNIW(u"\u00C4b", u"\u00E4Bx", 2), 0);
}

// The rank tables must give exactly ICU's answer, so that a mix of table and ICU answers
// within one std::map stays a strict weak order. Several locales, because tailorings change
// what the tables may assume: Danish sorts upper case first, Czech has the contraction "ch",
// Swedish reorders letters only outside ASCII.
TEST(TextServicesCompare, AsciiFastPathGivesIcusAnswer) {
    LocaleGuard guard;
    for (char const* locale : {"", "de", "da", "cs", "sv", "en_US_POSIX", "en@colNumeric=yes"}) {
        ASSERT_TRUE(SetCollationLocale(locale)) << locale;
        IcuCollator const tertiary(locale, UCOL_TERTIARY);
        IcuCollator const secondary(locale, UCOL_SECONDARY);
        TextGenerator gen(1234);
        for (int i = 0; i < 20000; ++i) {
            std::u16string const a = gen.Next();
            std::u16string const b = gen.Partner(a);
            ASSERT_EQ(lstrcmpW(a.c_str(), b.c_str()), tertiary(a, b))
                << locale << " " << testing::PrintToString(a) << " " << testing::PrintToString(b);
            ASSERT_EQ(lstrcmpiW(a.c_str(), b.c_str()), secondary(a, b))
                << locale << " " << testing::PrintToString(a) << " " << testing::PrintToString(b);
            std::string const na = Narrow(a);
            std::string const nb = Narrow(b);
            ASSERT_EQ(lstrcmpA(na.c_str(), nb.c_str()), tertiary(Widen(na), Widen(nb)))
                << locale << " " << na << " " << nb;
            ASSERT_EQ(lstrcmpiA(na.c_str(), nb.c_str()), secondary(Widen(na), Widen(nb)))
                << locale << " " << na << " " << nb;
        }
    }
}

TEST(TextServicesCompare, OrdersAMapConsistently) {
    TextGenerator gen(99);
    std::vector<std::u16string> words;
    for (int i = 0; i < 300; ++i)
        words.push_back(gen.Next());
    words.push_back(u"Stra\u00DFe");
    words.push_back(u"Strasse");
    words.push_back(u"stra\u00DFe");
    for (auto compare : {lstrcmpW, lstrcmpiW}) {
        auto less = [&](std::u16string const& x, std::u16string const& y) {
            return compare(x.c_str(), y.c_str()) < 0;
        };
        std::vector<std::u16string> sorted = words;
        std::sort(sorted.begin(), sorted.end(), less);
        // Sorted means every later element is not less than an earlier one, and equal
        // neighbours compare equal both ways.
        for (std::size_t i = 0; i + 1 < sorted.size(); ++i)
            for (std::size_t j = i + 1; j < sorted.size(); ++j) {
                int const ij = compare(sorted[i].c_str(), sorted[j].c_str());
                int const ji = compare(sorted[j].c_str(), sorted[i].c_str());
                ASSERT_LE(ij, 0);
                ASSERT_EQ(ij, -ji);
            }
    }
}

TEST(TextServicesCompare, LocaleChangesTheOrder) {
    LocaleGuard guard;
    EXPECT_LT(lstrcmpW(u"\u00E4", u"z"), 0); // root: ä is a variant of a
    ASSERT_TRUE(SetCollationLocale("sv"));
    EXPECT_GT(lstrcmpW(u"\u00E4", u"z"), 0); // Swedish: ä after z
    EXPECT_LT(lstrcmpW(u"a", u"A"), 0);
    ASSERT_TRUE(SetCollationLocale("da"));
    EXPECT_GT(lstrcmpW(u"a", u"A"), 0); // Danish: upper case first, also on the fast path
    EXPECT_GT(lstrcmpA("ab", "Ab"), 0);
    EXPECT_FALSE(SetCollationLocale("xx-nonsense"));
    EXPECT_GT(lstrcmpW(u"a", u"A"), 0); // the previous collator stays
    ASSERT_TRUE(SetCollationLocale(""));
    EXPECT_LT(lstrcmpW(u"a", u"A"), 0);
}

TEST(TextServicesSearch, WideAsShlwapiAnswers) {
    char16_t const* s = u"Hello World";
    EXPECT_EQ(StrChrW(s, u'o'), s + 4);
    EXPECT_EQ(StrChrW(s, u'O'), nullptr);
    EXPECT_EQ(StrChrW(s, 0), s + 11); // the terminator is found, unlike in the other forms
    EXPECT_EQ(StrChrIW(s, 0), nullptr);
    EXPECT_EQ(StrChrIW(s, u'O'), s + 4);
    EXPECT_EQ(StrRChrW(s, nullptr, u'o'), s + 7);
    EXPECT_EQ(StrRChrW(s, s + 5, u'o'), s + 4);
    EXPECT_EQ(StrRChrW(s, s + 4, u'o'), nullptr);
    EXPECT_EQ(StrRChrW(s, nullptr, 0), nullptr);
    EXPECT_EQ(StrStrW(s, u"World"), s + 6);
    EXPECT_EQ(StrStrW(s, u"world"), nullptr);
    EXPECT_EQ(StrStrW(s, u""), nullptr);
    EXPECT_EQ(StrStrIW(s, u""), nullptr);
    EXPECT_EQ(StrStrIW(s, u"WORLD"), s + 6);
    EXPECT_EQ(StrStrIW(s, u"WORLDS"), nullptr);
    char16_t const* overlap = u"aaab";
    EXPECT_EQ(StrStrIW(overlap, u"AAB"), overlap + 1);
    for (auto* null :
         {StrStrW(nullptr, u"a"), StrStrW(s, nullptr), StrStrIW(nullptr, u"a"),
          StrChrW(nullptr, u'a'), StrChrIW(nullptr, u'a'), StrRChrW(nullptr, nullptr, u'a')})
        EXPECT_EQ(null, nullptr);

    // Case folding beyond ASCII, unit by unit.
    char16_t const* eu = u"x\u00DFy\u00C4\u0130\u03A3";
    EXPECT_EQ(StrChrIW(eu, u'\u00E4'), eu + 3);
    EXPECT_EQ(StrChrIW(eu, u'\u03C3'), eu + 5);
    EXPECT_EQ(StrStrIW(eu, u"\u03C2"), eu + 5); // final sigma folds to sigma
    EXPECT_EQ(StrStrIW(eu, u"SS"), nullptr);    // no full folding: ß is one unit
    EXPECT_EQ(StrChrIW(eu, u'i'), nullptr);     // İ has no simple folding
    char16_t const* kelvin = u"x\u212A";
    EXPECT_EQ(StrStrIW(kelvin, u"k"), kelvin + 1);
}

TEST(TextServicesSearch, NarrowFoldsThroughTheCodePage) {
    char const* a = "Hello World";
    EXPECT_EQ(StrChrA(a, 'W'), a + 6);
    EXPECT_EQ(StrChrA(a, 0), nullptr);
    EXPECT_EQ(StrChrIA(a, 'w'), a + 6);
    EXPECT_EQ(StrChrIA(a, 0x100 + 'w'), a + 6); // only the low byte counts
    EXPECT_EQ(StrStrA(a, "lo W"), a + 3);
    EXPECT_EQ(StrStrA(a, ""), nullptr);
    EXPECT_EQ(StrStrIA(a, "LO w"), a + 3);
    EXPECT_EQ(StrStrIA(a, ""), nullptr);
    EXPECT_EQ(StrStrIA(a, "xyz"), nullptr);
    EXPECT_EQ(StrStrIA(nullptr, "a"), nullptr);
    EXPECT_EQ(StrStrIA(a, nullptr), nullptr);
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
    EXPECT_LT(wcsncmp16(u"abcX", u"abcY", 4), 0);
    EXPECT_EQ(wcsncmp16(u"\xFFFF", u"a", 1), 65438);
    EXPECT_EQ(wcsncmp16(u"ab", u"ab", 10), 0); // stops at the terminator
    EXPECT_EQ(_wcsnicmp16(u"ABC", u"abc", 3), 0);
    EXPECT_EQ(_wcsnicmp16(u"\u00C4", u"\u00E4", 1), -32); // only A to Z fold
    EXPECT_EQ(_wcsnicmp16(u"ab", u"AB", 10), 0);
    EXPECT_EQ(_stricmp("Hello", "hELLO"), 0);
    EXPECT_EQ(_strnicmp("Hello1", "hELLO2", 5), 0);
    EXPECT_LT(_strnicmp("Hello1", "hELLO2", 6), 0);
    EXPECT_EQ(_strnicmp("_", "A", 1), -2); // letters fold to lower case, so '_' < 'a'
    EXPECT_GT(_stricmp("\xE9", "z"), 0);   // bytes above 0x7F compare unsigned
    EXPECT_EQ(_stricmp("", ""), 0);
}

TEST(TextServicesClasses, NarrowIsAsciiOnly) {
    for (int b = 0; b < 256; ++b) {
        char const c = static_cast<char>(b);
        bool const upper = b >= 'A' && b <= 'Z';
        bool const lower = b >= 'a' && b <= 'z';
        bool const digit = b >= '0' && b <= '9';
        EXPECT_EQ(IsAlphaA(c), upper || lower) << b;
        EXPECT_EQ(IsDigitA(c), digit) << b;
        EXPECT_EQ(IsAlnumA(c), upper || lower || digit) << b;
        EXPECT_EQ(IsPrintA(c), b >= 0x20 && b < 0x7F) << b;
        EXPECT_EQ(IsSpaceA(c), b == ' ' || (b >= 9 && b <= 13)) << b;
        EXPECT_EQ(ToUpperA(c), lower ? static_cast<char>(b - 32) : c) << b;
        EXPECT_EQ(ToLowerA(c), upper ? static_cast<char>(b + 32) : c) << b;
    }
}

// The runtime's wide classes on Windows, for units where its character table and Unicode
// could disagree.
TEST(TextServicesClasses, WideAgreesWithWindows) {
    struct Row {
        char16_t c;
        bool alpha, digit, print, space;
    } const rows[] = {
        {u'A', 1, 0, 1, 0},      {u'0', 0, 1, 1, 0},      {u'_', 0, 0, 1, 0},
        {u' ', 0, 0, 1, 1},      {u'\t', 0, 0, 1, 1},     {u'\v', 0, 0, 0, 1},
        {u'\x1F', 0, 0, 0, 0},   {u'\x7F', 0, 0, 0, 0},   {u'\x85', 0, 0, 0, 0},
        {u'\xA0', 0, 0, 1, 1},   {u'\xAA', 0, 0, 1, 0},   {u'\xB2', 0, 1, 1, 0},
        {u'\xB5', 0, 0, 1, 0},   {u'\xB9', 0, 1, 1, 0},   {u'\xBA', 0, 0, 1, 0},
        {u'\xD7', 0, 0, 1, 0},   {u'\xDF', 1, 0, 1, 0},   {u'\xAD', 0, 0, 1, 0},
        {u'\u0131', 1, 0, 1, 0}, {u'\u03C2', 1, 0, 1, 0}, {u'\u0401', 1, 0, 1, 0},
        {u'\u0660', 0, 1, 1, 0}, {u'\u0966', 0, 1, 1, 0}, {u'\uFF10', 0, 1, 1, 0},
        {u'\u2070', 0, 0, 0, 0}, {u'\u2074', 0, 0, 0, 0}, {u'\u2460', 0, 0, 0, 0},
        {u'\u1680', 0, 0, 0, 1}, {u'\u2000', 0, 0, 0, 1}, {u'\u200B', 0, 0, 0, 0},
        {u'\u2028', 0, 0, 0, 1}, {u'\u2029', 0, 0, 0, 1}, {u'\u202F', 0, 0, 0, 1},
        {u'\u3000', 0, 0, 1, 1}, {u'\u3042', 1, 0, 1, 0}, {u'\u4E2D', 1, 0, 1, 0},
        {u'\xD800', 0, 0, 0, 0}, {u'\xDC00', 0, 0, 0, 0}, {u'\uE000', 0, 0, 0, 0},
        {u'\uFFFF', 0, 0, 0, 0}, {u'\u0378', 0, 0, 0, 0}, {u'\u0301', 0, 0, 0, 0},
        {u'\u0345', 0, 0, 0, 0}, {u'\u2160', 1, 0, 1, 0}, {u'\u02B0', 1, 0, 1, 0},
    };
    for (Row const& r : rows) {
        EXPECT_EQ(IsAlphaW(r.c), r.alpha) << std::hex << unsigned(r.c);
        EXPECT_EQ(IsDigitW(r.c), r.digit) << std::hex << unsigned(r.c);
        EXPECT_EQ(IsAlnumW(r.c), r.alpha || r.digit) << std::hex << unsigned(r.c);
        EXPECT_EQ(IsPrintW(r.c), r.print) << std::hex << unsigned(r.c);
        EXPECT_EQ(IsSpaceW(r.c), r.space) << std::hex << unsigned(r.c);
    }
}

TEST(TextServicesClasses, WideCaseMappingIsSimpleUnicode) {
    EXPECT_EQ(ToUpperW(u'a'), u'A');
    EXPECT_EQ(ToUpperW(u'\u00E9'), u'\u00C9');
    EXPECT_EQ(ToUpperW(u'\u00FF'), u'\u0178');
    EXPECT_EQ(ToUpperW(u'\u00DF'), u'\u00DF'); // no one-unit upper case
    EXPECT_EQ(ToLowerW(u'\u0414'), u'\u0434');
    EXPECT_EQ(ToLowerW(u'\u03A3'), u'\u03C3');
    EXPECT_EQ(ToUpperW(u'\xD800'), u'\xD800');
    EXPECT_EQ(ToLowerW(u'\xDFFF'), u'\xDFFF');
    EXPECT_EQ(ToUpperW(u'\uFFFF'), u'\uFFFF');
}
