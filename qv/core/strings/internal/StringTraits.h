// The points where the two string twins differ, each told once. StringBase reads these
// traits; nothing else in the implementation knows which twin it serves.
#pragma once

#include <cstring>
#include <qv/platform/TextServices.h>

namespace qv::detail {

template <class Unit>
struct StringTraits;

// BString: bytes in the ANSI code page. Equality and suffixes compare exact bytes while Cmp
// and ICmp follow the locale, and a failed Search reports 65535: callers of the Windows library
// test for that value, so it stays.
template <>
struct StringTraits<char> {
    using CharArg = int;
    static constexpr unsigned long long kNotFound = 65535;
    static constexpr bool kReplaceSameCharAlwaysTrue = false;
    // Printf's fixed buffer (the limit is one less); when the heap retry cannot allocate, the
    // old text stays.
    static constexpr std::size_t kPrintfBuffer = 16385;
    static constexpr bool kPrintfKeepsTextOnFailure = true;
    // Convert(int &) reads a decimal integer before it tries hexadecimal.
    static constexpr bool kConvertIntRounds = false;

    static std::size_t Length(char const* s) { return std::strlen(s); }
    static int Cmp(char const* a, char const* b) { return qv::platform::lstrcmpA(a, b); }
    static int ICmp(char const* a, char const* b) { return qv::platform::lstrcmpiA(a, b); }
    static bool Equal(char const* a, char const* b) { return std::strcmp(a, b) == 0; }
    static bool Less(char const* a, char const* b) { return std::strcmp(a, b) < 0; }
    static bool TailEqual(char const* a, char const* b) { return std::strcmp(a, b) == 0; }
    static bool TailIEqual(char const* a, char const* b) {
        return qv::platform::_stricmp(a, b) == 0;
    }
    static int NCmp(char const* a, char const* b, std::size_t n) { return std::strncmp(a, b, n); }
    static int NICmp(char const* a, char const* b, std::size_t n) {
        return qv::platform::_strnicmp(a, b, n);
    }
    static char const* Find(char const* s, char const* f) { return std::strstr(s, f); }
    static char const* IFind(char const* s, char const* f) { return qv::platform::StrStrIA(s, f); }
    static char const* IFindChar(char const* s, char c) {
        return qv::platform::StrChrIA(s, static_cast<unsigned char>(c));
    }
    static bool IsSpace(char c) { return qv::platform::IsSpaceA(c); }
    static bool IsAlpha(char c) { return qv::platform::IsAlphaA(c); }
    static bool IsAlnum(char c) { return qv::platform::IsAlnumA(c); }
    static bool IsDigit(char c) { return qv::platform::IsDigitA(c); }
    static bool IsPrint(char c) { return qv::platform::IsPrintA(c); }
    static char ToLower(char c) { return qv::platform::ToLowerA(c); }
    static char ToUpper(char c) { return qv::platform::ToUpperA(c); }
    // Printable escapes every byte of 0x80 and above, whatever the code page calls printable.
    static bool NeedsEscape(char c) {
        return c == '\\' || static_cast<unsigned char>(c) >= 0x80 || !IsPrint(c);
    }
};

// WString: UTF-16 units. Every comparison, equality included, goes through the locale rule of
// lstrcmpW, so two spellings the collator calls equal are equal keys.
template <>
struct StringTraits<char16_t> {
    using CharArg = char16_t;
    static constexpr unsigned long long kNotFound = ~0ull;
    static constexpr bool kReplaceSameCharAlwaysTrue = true;
    // Printf's fixed buffer (the limit is one less). The old text is gone once the fixed buffer
    // has failed, so a failed heap retry leaves the string empty.
    static constexpr std::size_t kPrintfBuffer = 4097;
    static constexpr bool kPrintfKeepsTextOnFailure = false;
    // Convert(int &) reads a floating-point number, rounds it half away from zero and
    // saturates it, before it tries hexadecimal.
    static constexpr bool kConvertIntRounds = true;

    static std::size_t Length(char16_t const* s) {
        return static_cast<std::size_t>(qv::platform::lstrlenW(s));
    }
    static int Cmp(char16_t const* a, char16_t const* b) { return qv::platform::lstrcmpW(a, b); }
    static int ICmp(char16_t const* a, char16_t const* b) { return qv::platform::lstrcmpiW(a, b); }
    static bool Equal(char16_t const* a, char16_t const* b) {
        return qv::platform::lstrcmpW(a, b) == 0;
    }
    static bool Less(char16_t const* a, char16_t const* b) {
        return qv::platform::lstrcmpW(a, b) < 0;
    }
    static bool TailEqual(char16_t const* a, char16_t const* b) { return Equal(a, b); }
    static bool TailIEqual(char16_t const* a, char16_t const* b) {
        return qv::platform::lstrcmpiW(a, b) == 0;
    }
    static int NCmp(char16_t const* a, char16_t const* b, std::size_t n) {
        return qv::platform::wcsncmp16(a, b, n);
    }
    static int NICmp(char16_t const* a, char16_t const* b, std::size_t n) {
        return qv::platform::_wcsnicmp16(a, b, n);
    }
    static char16_t const* Find(char16_t const* s, char16_t const* f) {
        return qv::platform::StrStrW(s, f);
    }
    static char16_t const* IFind(char16_t const* s, char16_t const* f) {
        return qv::platform::StrStrIW(s, f);
    }
    static char16_t const* IFindChar(char16_t const* s, char16_t c) {
        return qv::platform::StrChrIW(s, c);
    }
    static bool IsSpace(char16_t c) { return qv::platform::IsSpaceW(c); }
    static bool IsAlpha(char16_t c) { return qv::platform::IsAlphaW(c); }
    static bool IsAlnum(char16_t c) { return qv::platform::IsAlnumW(c); }
    static bool IsDigit(char16_t c) { return qv::platform::IsDigitW(c); }
    static bool IsPrint(char16_t c) { return qv::platform::IsPrintW(c); }
    static char16_t ToLower(char16_t c) { return qv::platform::ToLowerW(c); }
    static char16_t ToUpper(char16_t c) { return qv::platform::ToUpperW(c); }
    // Printable escapes what iswprint rejects; the escape shows the low 8 bits only.
    static bool NeedsEscape(char16_t c) { return c == u'\\' || !IsPrint(c); }
};

} // namespace qv::detail
