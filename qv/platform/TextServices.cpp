#include "qv/platform/TextServices.h"

#include "qv/platform/CodePage.h"
#include "qv/platform/TextHash.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/uvernum.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QV_PLAIN_STRLEN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ||                         \
    __has_feature(memory_sanitizer)
#define QV_PLAIN_STRLEN 1
#endif
#endif

namespace qv::platform {

namespace detail {
unsigned AnsiCodePageGeneration(); // CodePage.cpp
} // namespace detail

// ---------------------------------------------------------------------------------------------
// Length

int lstrlenW(char16_t const* s) {
    if (s == nullptr)
        return 0;
#if defined(__SSE2__) && !defined(QV_PLAIN_STRLEN)
    // Eight units at a time with 16-byte aligned loads: an aligned load never crosses into the
    // page after the one holding the terminator. The units of the first load that lie before
    // the text are masked off; what a load reads behind the terminator is ignored.
    auto const start = reinterpret_cast<std::uintptr_t>(s);
    if ((start & 1) == 0) {
        __m128i const zero = _mm_setzero_si128();
        auto const* block = reinterpret_cast<__m128i const*>(start & ~std::uintptr_t{15});
        unsigned mask =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(block), zero))) &
            (~0u << (start & 15));
        while (mask == 0)
            mask = static_cast<unsigned>(
                _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_load_si128(++block), zero)));
        auto const end = reinterpret_cast<std::uintptr_t>(block) + std::countr_zero(mask);
        return static_cast<int>((end - start) / 2);
    }
#endif
    char16_t const* p = s;
    while (*p != 0)
        ++p;
    return static_cast<int>(p - s);
}

// ---------------------------------------------------------------------------------------------
// Collation

namespace {

// One collator configuration, immutable once built and shared by all threads. ICU documents
// cloning, not sharing, as the way to use one collator on several threads, so each thread
// compares with its own clone of the collator here; the rank tables are plain data and
// shared. A locale change publishes a new instance; threads still holding the old one finish
// their comparison with it.
//
// The collator works at identical strength: texts that collate alike at every level are still
// ordered by their code points (after canonical decomposition), so only canonically
// equivalent texts are equal, as on Windows ("a" and "a\x01", U+200B and "", "1" and an
// Arabic-Indic one are all different there). Case-blind comparison folds case first and then
// compares the same way, so it ignores case and nothing else: width, compatibility forms and
// no-break spaces keep texts apart.
struct Collation {
    UCollator* identical = nullptr;

    // Printable ASCII is by far the most common input. Each such character is one collation
    // element with a non-zero primary weight in the usual locales, so comparing rank tables
    // gives ICU's answer without ICU's per-call overhead. A rank of 0 marks a unit the tables
    // cannot answer for (controls are ignorable, everything above 0x7E may combine). The
    // tertiary ranks are all different, so texts the tables call equal are the same text.
    bool fast = false;
    std::uint8_t primary[128] = {};
    std::uint8_t tertiaryRank[128] = {};

    Collation() = default;
    Collation(Collation const&) = delete;
    Collation& operator=(Collation const&) = delete;
    ~Collation() {
        if (identical != nullptr)
            ucol_close(identical);
    }
};

constexpr char16_t firstFast = 0x20;
constexpr char16_t lastFast = 0x7E;

// True when the locale has a contraction made only of printable ASCII ("ch" in Czech, "aa" in
// Danish) or expands a printable ASCII character into several collation elements: then one
// rank per character would be wrong.
bool HasAsciiContraction(UCollator const* coll) {
    UErrorCode status = U_ZERO_ERROR;
    USet* contractions = uset_openEmpty();
    USet* expansions = uset_openEmpty();
    ucol_getContractionsAndExpansions(coll, contractions, expansions, true, &status);
    bool found = U_FAILURE(status);
    for (char16_t c = firstFast; !found && c <= lastFast; ++c)
        found = uset_contains(expansions, c);
    int32_t const items = uset_getItemCount(contractions);
    UChar buffer[64];
    for (int32_t i = 0; !found && i < items; ++i) {
        UChar32 start = 0;
        UChar32 end = 0;
        UErrorCode itemStatus = U_ZERO_ERROR;
        int32_t const length = uset_getItem(contractions, i, &start, &end, buffer, 64, &itemStatus);
        if (length <= 0)
            continue;
        if (U_FAILURE(itemStatus)) {
            found = true;
            break;
        }
        found = std::all_of(buffer, buffer + length,
                            [](UChar u) { return u >= firstFast && u <= lastFast; });
    }
    uset_close(contractions);
    uset_close(expansions);
    return found;
}

UCollator* OpenCollator(char const* locale, UColAttributeValue strength) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* coll = ucol_open(locale, &status);
    if (U_FAILURE(status))
        return nullptr;
    ucol_setStrength(coll, strength);
    return coll;
}

// Ranks of the printable ASCII characters as the collators order them; fast stays false when
// a check shows the tables would not reproduce ICU's answer for every ASCII string.
void BuildFastTables(Collation& c, char const* locale) {
    std::unique_ptr<UCollator, void (*)(UCollator*)> const primaryOwner(
        OpenCollator(locale, UCOL_PRIMARY), ucol_close);
    std::unique_ptr<UCollator, void (*)(UCollator*)> const secondaryOwner(
        OpenCollator(locale, UCOL_SECONDARY), ucol_close);
    std::unique_ptr<UCollator, void (*)(UCollator*)> const tertiaryOwner(
        OpenCollator(locale, UCOL_TERTIARY), ucol_close);
    UCollator const* primary = primaryOwner.get();
    UCollator const* secondary = secondaryOwner.get();
    UCollator const* tertiary = tertiaryOwner.get();
    if (!primary || !secondary || !tertiary)
        return;
    auto cmp = [](UCollator const* coll, char16_t x, char16_t y) {
        return ucol_strcoll(coll, &x, 1, &y, 1);
    };

    UErrorCode status = U_ZERO_ERROR;
    bool ok = ucol_getAttribute(tertiary, UCOL_NUMERIC_COLLATION, &status) != UCOL_ON &&
              U_SUCCESS(status) && !HasAsciiContraction(tertiary);
    // Each character must weigh something at the primary level (an ignorable one would make
    // "a b" equal "ab"), which also rules out locales that shift punctuation.
    for (char16_t ch = firstFast; ok && ch <= lastFast; ++ch)
        ok = ucol_strcoll(primary, &ch, 1, nullptr, 0) > 0;

    char16_t chars[lastFast - firstFast + 1];
    for (char16_t ch = firstFast; ch <= lastFast; ++ch)
        chars[ch - firstFast] = ch;
    constexpr int count = lastFast - firstFast + 1;

    if (ok) {
        std::sort(chars, chars + count,
                  [&](char16_t x, char16_t y) { return cmp(primary, x, y) < 0; });
        std::uint8_t rank = 0;
        for (int i = 0; i < count; ++i) {
            if (i == 0 || cmp(primary, chars[i - 1], chars[i]) != 0)
                ++rank;
            c.primary[chars[i]] = rank;
        }
        std::sort(chars, chars + count,
                  [&](char16_t x, char16_t y) { return cmp(tertiary, x, y) < 0; });
        rank = 0;
        for (int i = 0; i < count; ++i) {
            // Two characters alike at every level would need the identical level as well.
            if (i > 0 && cmp(tertiary, chars[i - 1], chars[i]) == 0)
                ok = false;
            c.tertiaryRank[chars[i]] = ++rank;
        }
        // Characters sharing a primary weight must differ at most at the tertiary level
        // (case); a secondary difference or a case level would need more than two tables.
        for (char16_t x = firstFast; ok && x <= lastFast; ++x)
            for (char16_t y = firstFast; ok && y <= lastFast; ++y)
                if (c.primary[x] == c.primary[y])
                    ok = cmp(secondary, x, y) == 0;
    }
    c.fast = ok;
}

std::shared_ptr<Collation const> Build(char const* locale) {
    auto c = std::make_shared<Collation>();
    c->identical = OpenCollator(locale, UCOL_IDENTICAL);
    if (c->identical == nullptr)
        return nullptr;
    BuildFastTables(*c, locale);
    return c;
}

std::mutex collationMutex;
std::shared_ptr<Collation const> currentCollation;
std::atomic<unsigned> collationGeneration{0};

UCollator* Clone(UCollator const* coll) {
    UErrorCode status = U_ZERO_ERROR;
#if U_ICU_VERSION_MAJOR_NUM >= 71
    UCollator* clone = ucol_clone(coll, &status);
#else
    UCollator* clone = ucol_safeClone(coll, nullptr, nullptr, &status);
#endif
    return U_SUCCESS(status) ? clone : nullptr;
}

// Each thread keeps the instance it last used, with its own clone of the collator, and only
// takes the lock when a locale change has been published since, so a comparison costs one
// atomic load.
struct CollationCache {
    unsigned generation = ~0u;
    std::shared_ptr<Collation const> collation;
    UCollator* identical = nullptr;

    CollationCache() = default;
    CollationCache(CollationCache const&) = delete;
    CollationCache& operator=(CollationCache const&) = delete;
    ~CollationCache() { CloseClones(); }

    void CloseClones() {
        if (identical != nullptr)
            ucol_close(identical);
        identical = nullptr;
    }
};
thread_local CollationCache collationCache;

CollationCache const& CurrentCollation() {
    CollationCache& cache = collationCache;
    unsigned const generation = collationGeneration.load(std::memory_order_acquire);
    if (cache.identical != nullptr && cache.generation == generation)
        return cache;
    std::shared_ptr<Collation const> shared;
    {
        std::lock_guard lock(collationMutex);
        if (!currentCollation)
            currentCollation = Build("");
        shared = currentCollation;
        cache.generation = collationGeneration.load(std::memory_order_relaxed);
    }
    cache.CloseClones();
    cache.identical = Clone(shared->identical);
    cache.collation = std::move(shared);
    return cache;
}

int Sign(int v) {
    return (v > 0) - (v < 0);
}

// The table answer for two terminated strings of printable ASCII, or 2 when either holds a
// unit the tables do not cover. Primary weights over the whole strings decide first; only when
// they are all equal (so both strings have the same length) does the first case difference.
// Case-blind, letters are folded first, so what remains is the same text.
template <typename Unit>
int FastCompare(Collation const& c, Unit const* a, Unit const* b, bool caseSensitive) {
    using U = std::make_unsigned_t<Unit>;
    auto valid = [&](U u) { return u < 128 && c.primary[u] != 0; };
    auto validRest = [&](Unit const* p) {
        for (; *p != 0; ++p)
            if (!valid(static_cast<U>(*p)))
                return false;
        return true;
    };
    int tertiaryOrder = 0;
    auto fold = [&](Unit u) {
        U const x = static_cast<U>(u);
        return !caseSensitive && x >= 'A' && x <= 'Z' ? static_cast<U>(x + 32) : x;
    };
    for (std::size_t i = 0;; ++i) {
        U const x = fold(a[i]);
        U const y = fold(b[i]);
        if (x == 0 || y == 0) {
            if (x == 0 && y == 0)
                return tertiaryOrder;
            if (x == 0)
                return validRest(b + i) ? -1 : 2;
            return validRest(a + i) ? 1 : 2;
        }
        if (!valid(x) || !valid(y))
            return 2;
        if (x == y)
            continue;
        std::uint8_t const px = c.primary[x];
        std::uint8_t const py = c.primary[y];
        if (px != py)
            return validRest(a + i + 1) && validRest(b + i + 1) ? (px < py ? -1 : 1) : 2;
        if (tertiaryOrder == 0) {
            std::uint8_t const tx = c.tertiaryRank[x];
            std::uint8_t const ty = c.tertiaryRank[y];
            tertiaryOrder = tx < ty ? -1 : (tx > ty ? 1 : 0);
        }
    }
}

std::u16string FromAnsi(char const* s) {
    int const needed = MultiByteToWideChar(s, -1, nullptr, 0);
    std::u16string out(static_cast<std::size_t>(needed > 0 ? needed : 1), u'\0');
    if (needed > 0)
        MultiByteToWideChar(s, -1, out.data(), needed);
    out.resize(out.size() - 1);
    return out;
}

// Whether a character keeps its case in case-blind comparisons although Unicode folds it: the
// compatibility variants that Windows does not count as case forms of the letter they fold to
// (micro sign, long s, the Greek symbol forms of beta, theta, phi, pi, kappa and rho, the
// iota subscript, the old Cyrillic small forms). Final sigma, the title-case digraphs, the
// capital sharp s and the Kelvin and Ohm signs do fold, as they do on Windows.
bool KeepsItsCase(UChar32 c) {
    switch (c) {
    case 0x00B5:
    case 0x017F:
    case 0x0345:
    case 0x03D0:
    case 0x03D1:
    case 0x03D5:
    case 0x03D6:
    case 0x03F0:
    case 0x03F1:
    case 0x03F4:
    case 0x1E9B:
        return true;
    default:
        return c >= 0x1C80 && c <= 0x1C88;
    }
}

// Simple case folding of text, character by character, into out.
void FoldCase(std::u16string_view text, std::u16string& out) {
    out.clear();
    for (std::size_t i = 0; i < text.size();) {
        UChar32 c;
        U16_NEXT(text.data(), i, text.size(), c);
        if (!KeepsItsCase(c))
            c = u_foldCase(c, U_FOLD_CASE_DEFAULT);
        if (c <= 0xFFFF) {
            out += static_cast<char16_t>(c);
        } else {
            out += static_cast<char16_t>(U16_LEAD(c));
            out += static_cast<char16_t>(U16_TRAIL(c));
        }
    }
}

int Collate(UCollator const* coll, std::u16string_view a, std::u16string_view b,
            bool caseSensitive) {
    if (!caseSensitive) {
        thread_local std::u16string foldedA;
        thread_local std::u16string foldedB;
        FoldCase(a, foldedA);
        FoldCase(b, foldedB);
        a = foldedA;
        b = foldedB;
    }
    return Sign(ucol_strcoll(coll, a.data(), static_cast<int32_t>(a.size()), b.data(),
                             static_cast<int32_t>(b.size())));
}

// Both widths: null first, then the ASCII tables where they decide, else ICU. Printable ASCII
// reads the same in every ANSI code page we support, so narrow text takes the same tables and
// is widened only for ICU.
template <class Unit>
int Compare(Unit const* a, Unit const* b, bool caseSensitive) {
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    CollationCache const& cache = CurrentCollation();
    Collation const& c = *cache.collation;
    if (c.fast) {
        int const r = FastCompare(c, a, b, caseSensitive);
        if (r != 2)
            return r;
    }
    if constexpr (std::is_same_v<Unit, char16_t>)
        return Collate(cache.identical, a, b, caseSensitive);
    else
        return Collate(cache.identical, FromAnsi(a), FromAnsi(b), caseSensitive);
}

} // namespace

int lstrcmpW(char16_t const* a, char16_t const* b) {
    return Compare(a, b, true);
}
int lstrcmpiW(char16_t const* a, char16_t const* b) {
    return Compare(a, b, false);
}
int lstrcmpA(char const* a, char const* b) {
    return Compare(a, b, true);
}
int lstrcmpiA(char const* a, char const* b) {
    return Compare(a, b, false);
}

// ---------------------------------------------------------------------------------------------
// Hashes of the comparisons

namespace {

// FNV-1a over the units.
struct UnitHash {
    std::uint64_t h = 14695981039346656037ull;
    void Add(char16_t u) { h = (h ^ u) * 1099511628211ull; }
};

// Below U+00C0 no unit has a canonical decomposition or combines, and case folding changes
// only A to Z (the micro sign keeps its case): such a text is its own canonical form.
constexpr char16_t kFirstDecomposable = 0xC0;

std::uint64_t HashCanonical(char16_t const* s, bool caseSensitive) {
    if (s == nullptr)
        s = u"";
    UnitHash hash;
    char16_t const* p = s;
    for (; *p != 0 && *p < kFirstDecomposable; ++p)
        hash.Add(!caseSensitive && *p >= u'A' && *p <= u'Z' ? static_cast<char16_t>(*p + 32) : *p);
    if (*p == 0)
        return hash.h;
    // Otherwise the whole text goes the way of the comparison: fold case (case-blind), then
    // decompose, and the result is hashed.
    hash = UnitHash{};
    thread_local std::u16string folded;
    thread_local std::u16string decomposed;
    std::u16string_view text(s);
    if (!caseSensitive) {
        FoldCase(text, folded);
        text = folded;
    }
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* nfd = unorm2_getNFDInstance(&status);
    int32_t length = 0;
    if (U_SUCCESS(status)) {
        decomposed.resize(text.size() * 4 + 16);
        length =
            unorm2_normalize(nfd, text.data(), static_cast<int32_t>(text.size()), decomposed.data(),
                             static_cast<int32_t>(decomposed.size()), &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            decomposed.resize(static_cast<std::size_t>(length));
            length = unorm2_normalize(nfd, text.data(), static_cast<int32_t>(text.size()),
                                      decomposed.data(), length, &status);
        }
    }
    if (U_FAILURE(status))
        return 0; // without ICU's data such texts share one hash: slow, but never wrong

    for (int32_t i = 0; i < length; ++i)
        hash.Add(decomposed[static_cast<std::size_t>(i)]);
    return hash.h;
}

} // namespace

std::uint64_t HashForCmpW(char16_t const* s) {
    return HashCanonical(s, true);
}
std::uint64_t HashForCmpIW(char16_t const* s) {
    return HashCanonical(s, false);
}

bool SetCollationLocale(char const* localeName) {
    if (localeName == nullptr)
        localeName = "";
    // ICU opens a collator for any well-formed name, falling back to a parent or the root; a
    // name it knows nothing about would silently compare as root, so it is refused.
    if (*localeName != '\0') {
        UErrorCode status = U_ZERO_ERROR;
        UCollator* probe = ucol_open(localeName, &status);
        if (U_FAILURE(status))
            return false;
        // "de" has no tailoring of its own and opens with a warning, yet is a locale ICU
        // knows; a name it does not know ends at the root as its valid locale.
        UErrorCode typeStatus = U_ZERO_ERROR;
        char const* valid = ucol_getLocaleByType(probe, ULOC_VALID_LOCALE, &typeStatus);
        bool const known =
            U_SUCCESS(typeStatus) && valid != nullptr &&
            (std::strcmp(valid, "root") != 0 || std::strcmp(localeName, "root") == 0);
        ucol_close(probe);
        if (!known)
            return false;
    }
    std::shared_ptr<Collation const> next = Build(localeName);
    if (!next)
        return false;
    std::lock_guard lock(collationMutex);
    currentCollation = std::move(next);
    collationGeneration.fetch_add(1, std::memory_order_release);
    return true;
}

// ---------------------------------------------------------------------------------------------
// Search

namespace {

// Simple case folding of one unit: what the case-blind searches compare. Surrogates and units
// whose folding would leave the BMP stay as they are.
inline char16_t Fold(char16_t c) {
    if (c < 0x80)
        return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
    if (c >= 0xD800 && c <= 0xDFFF)
        return c;
    UChar32 const f = u_foldCase(c, U_FOLD_CASE_DEFAULT);
    return f <= 0xFFFF ? static_cast<char16_t>(f) : c;
}

// The narrow case-blind searches compare bytes as the characters they stand for in the ANSI
// code page (in Windows-1252, 0xFF 'ÿ' matches 0x9F 'Ÿ'). Bytes that are no character on
// their own (UTF-8 lead and trail bytes) only match themselves. Each thread keeps the folded
// value of every byte for the code page it last saw.
struct AnsiFoldTable {
    unsigned generation = ~0u;
    std::uint32_t key[256] = {};
};
thread_local AnsiFoldTable ansiFold;

std::uint32_t const* AnsiFoldKeys() {
    AnsiFoldTable& t = ansiFold;
    unsigned const generation = detail::AnsiCodePageGeneration();
    if (t.generation == generation)
        return t.key;
    for (unsigned b = 0; b < 256; ++b) {
        char const byte = static_cast<char>(b);
        char16_t unit = 0;
        if (b < 0x80)
            t.key[b] = Fold(static_cast<char16_t>(b));
        else if (MultiByteToWideChar(&byte, 1, &unit, 1) == 1 && unit != 0xFFFD)
            t.key[b] = Fold(unit);
        else
            t.key[b] = 0x10000 + b;
    }
    t.generation = generation;
    return t.key;
}

template <typename Unit, typename F>
Unit const* Find(Unit const* s, Unit const* find, F fold) {
    if (s == nullptr || find == nullptr || *find == 0)
        return nullptr;
    auto const first = fold(*find);
    for (; *s != 0; ++s) {
        if (fold(*s) != first)
            continue;
        std::size_t i = 1;
        while (find[i] != 0 && s[i] != 0 && fold(s[i]) == fold(find[i]))
            ++i;
        if (find[i] == 0)
            return s;
        if (s[i] == 0)
            return nullptr; // the rest of s is shorter than the needle
    }
    return nullptr;
}

template <typename Unit, typename F>
Unit const* FindChar(Unit const* s, Unit c, F fold) {
    if (s == nullptr)
        return nullptr;
    auto const fc = fold(c);
    for (; *s != 0; ++s)
        if (fold(*s) == fc)
            return s;
    return nullptr;
}

inline char16_t Same(char16_t c) {
    return c;
}
inline char SameA(char c) {
    return c;
}

template <typename Search>
char const* WithAnsiFold(Search search) {
    std::uint32_t const* keys = AnsiFoldKeys();
    return search([keys](char c) { return keys[static_cast<unsigned char>(c)]; });
}

} // namespace

// Unlike the other searches, shlwapi's StrChrW finds the terminator itself, as wcschr does.
char16_t const* StrChrW(char16_t const* s, char16_t c) {
    if (s != nullptr && c == 0)
        return s + lstrlenW(s);
    return FindChar(s, c, Same);
}
char16_t const* StrChrIW(char16_t const* s, char16_t c) {
    return FindChar(s, c, Fold);
}

char16_t const* StrRChrW(char16_t const* s, char16_t const* end, char16_t c) {
    if (s == nullptr)
        return nullptr;
    // With an end, Windows looks at every unit before it, terminator or not.
    if (end == nullptr)
        end = s + lstrlenW(s);
    for (char16_t const* p = end; p != s;)
        if (*--p == c)
            return p;
    return nullptr;
}

char16_t const* StrStrW(char16_t const* s, char16_t const* find) {
    return Find(s, find, Same);
}
char16_t const* StrStrIW(char16_t const* s, char16_t const* find) {
    return Find(s, find, Fold);
}

char const* StrChrA(char const* s, int c) {
    return FindChar(s, static_cast<char>(c), SameA);
}
char const* StrChrIA(char const* s, int c) {
    if (s == nullptr || static_cast<char>(c) == 0)
        return nullptr;
    return WithAnsiFold([&](auto fold) { return FindChar(s, static_cast<char>(c), fold); });
}
char const* StrStrA(char const* s, char const* find) {
    return Find(s, find, SameA);
}
char const* StrStrIA(char const* s, char const* find) {
    if (s == nullptr || find == nullptr)
        return nullptr;
    return WithAnsiFold([&](auto fold) { return Find(s, find, fold); });
}

// ---------------------------------------------------------------------------------------------
// shlwapi's case-blind comparisons: the locale's collation, as lstrcmpiW.

int StrCmpIW(char16_t const* a, char16_t const* b) {
    return lstrcmpiW(a, b);
}

int StrCmpNIW(char16_t const* a, char16_t const* b, int n) {
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    if (n <= 0)
        return 0;
    int la = 0;
    while (la < n && a[la] != 0)
        ++la;
    int lb = 0;
    while (lb < n && b[lb] != 0)
        ++lb;
    return Collate(CurrentCollation().identical,
                   std::u16string_view(a, static_cast<std::size_t>(la)),
                   std::u16string_view(b, static_cast<std::size_t>(lb)), false);
}

// ---------------------------------------------------------------------------------------------
// The C runtime's comparisons

int wcsncmp16(char16_t const* a, char16_t const* b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i] != b[i])
            return static_cast<int>(a[i]) - static_cast<int>(b[i]);
        if (a[i] == 0)
            break;
    }
    return 0;
}

int _wcsnicmp16(char16_t const* a, char16_t const* b, std::size_t n) {
    auto fold = [](char16_t c) { return static_cast<int>((c >= u'A' && c <= u'Z') ? c + 32 : c); };
    for (std::size_t i = 0; i < n; ++i) {
        int const x = fold(a[i]);
        int const y = fold(b[i]);
        if (x != y)
            return x - y;
        if (x == 0)
            break;
    }
    return 0;
}

namespace {
inline int FoldByte(char c) {
    auto const u = static_cast<unsigned char>(c);
    return (u >= 'A' && u <= 'Z') ? u + 32 : u;
}
} // namespace

int _strnicmp(char const* a, char const* b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        int const x = FoldByte(a[i]);
        int const y = FoldByte(b[i]);
        if (x != y)
            return x - y;
        if (x == 0)
            break;
    }
    return 0;
}

int _stricmp(char const* a, char const* b) {
    return _strnicmp(a, b, static_cast<std::size_t>(-1));
}

// ---------------------------------------------------------------------------------------------
// Wide case mapping and classes

namespace {
inline bool IsSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}
} // namespace

// Windows maps a character only to a partner that maps back to it: ı, ſ, µ and the title-case
// digraphs keep their form going up, İ, ẞ and the Kelvin, Ohm and Angstrom signs going down.
char16_t ToUpperW(char16_t c) {
    if (c < 0x80)
        return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
    if (IsSurrogate(c))
        return c;
    UChar32 const u = u_toupper(c);
    return u <= 0xFFFF && u_tolower(u) == c ? static_cast<char16_t>(u) : c;
}

char16_t ToLowerW(char16_t c) {
    if (c < 0x80)
        return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
    if (IsSurrogate(c))
        return c;
    UChar32 const u = u_tolower(c);
    return u <= 0xFFFF && u_toupper(u) == c ? static_cast<char16_t>(u) : c;
}

// The runtime classifies by Unicode character type, with the quirks of its Latin-1 table:
// ª, µ and º count as punctuation, the superscripts ¹ ² ³ as digits, the fractions ¼ ½ ¾ as
// punctuation, and tab as printable.
namespace {
inline bool IsLatin1Punctuation(char16_t c) {
    return c == 0xAA || c == 0xB5 || c == 0xBA || (c >= 0xBC && c <= 0xBE);
}
inline bool IsLatin1Superscript(char16_t c) {
    return c == 0xB2 || c == 0xB3 || c == 0xB9;
}
} // namespace

bool IsAlphaW(char16_t c) {
    if (c < 0x80)
        return (c | 32) >= u'a' && (c | 32) <= u'z';
    if (IsSurrogate(c) || IsLatin1Punctuation(c))
        return false;
    // Letters and letter numbers (Ⅰ, 〇); combining marks and circled letters are not.
    return u_isalpha(c) || u_charType(c) == U_LETTER_NUMBER;
}

bool IsDigitW(char16_t c) {
    if (c < 0x80)
        return c >= u'0' && c <= u'9';
    return !IsSurrogate(c) && (u_isdigit(c) || IsLatin1Superscript(c));
}

bool IsAlnumW(char16_t c) {
    return IsAlphaW(c) || IsDigitW(c);
}

// Printable is what the runtime calls blank, punctuation, letter or digit: so tab counts, and
// the soft hyphen (punctuation in its Latin-1 table), but combining marks, the typographic
// spaces and number forms that are no digit (⁰, ①) do not.
bool IsPrintW(char16_t c) {
    if (c < 0x80)
        return c == u'\t' || (c >= 0x20 && c < 0x7F);
    if (c == 0xA0 || c == 0xAD || c == 0x3000)
        return true;
    if (IsAlphaW(c) || IsDigitW(c))
        return true;
    switch (u_charType(c)) {
    case U_CONNECTOR_PUNCTUATION:
    case U_DASH_PUNCTUATION:
    case U_START_PUNCTUATION:
    case U_END_PUNCTUATION:
    case U_INITIAL_PUNCTUATION:
    case U_FINAL_PUNCTUATION:
    case U_OTHER_PUNCTUATION:
    case U_MATH_SYMBOL:
    case U_CURRENCY_SYMBOL:
    case U_MODIFIER_SYMBOL:
    case U_OTHER_SYMBOL:
        return true;
    default:
        return IsLatin1Punctuation(c);
    }
}

// Tab to carriage return and the Unicode space separators (no-break ones included), but not
// NEL (U+0085), the zero-width space or the byte order mark.
bool IsSpaceW(char16_t c) {
    if (c < 0x80)
        return c == u' ' || (c >= u'\t' && c <= u'\r');
    return !IsSurrogate(c) && u_isJavaSpaceChar(c);
}

// ---------------------------------------------------------------------------------------------
// Narrow classes: the "C" locale, ASCII only

namespace {
inline unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}
} // namespace

char ToUpperA(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}
char ToLowerA(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}
bool IsAlphaA(char c) {
    return (Byte(c) | 32) >= 'a' && (Byte(c) | 32) <= 'z';
}
bool IsDigitA(char c) {
    return c >= '0' && c <= '9';
}
bool IsAlnumA(char c) {
    return IsAlphaA(c) || IsDigitA(c);
}
bool IsPrintA(char c) {
    return Byte(c) >= 0x20 && Byte(c) < 0x7F;
}
bool IsSpaceA(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace qv::platform
