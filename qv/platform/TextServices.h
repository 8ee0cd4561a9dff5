// Text services on 16-bit units and ANSI bytes: what the Windows library gets from kernel32,
// shlwapi and the C runtime. Everything above the platform layer compares, folds and classifies
// text through these functions, never through the C library's locale-dependent ones.
#pragma once

#include <cstddef>

namespace qv::platform {

// Units before the terminator; 0 for a null pointer.
int lstrlenW(char16_t const* s);

// Three-way comparison under the user's locale (ICU collation, root locale unless the
// application chose another with SetCollationLocale). Negative, 0 or positive. Only
// canonically equivalent texts are equal: where the collation sees no difference, code points
// decide. The case-blind forms fold case first and ignore nothing else, so full-width, other
// compatibility forms and no-break spaces stay different from their plain letters. A null
// pointer orders before every text and equals another null pointer, as on Windows. The A
// forms read their bytes in the ANSI code page.
int lstrcmpW(char16_t const* a, char16_t const* b);
int lstrcmpiW(char16_t const* a, char16_t const* b);
int lstrcmpA(char const* a, char const* b);
int lstrcmpiA(char const* a, char const* b);

// Chooses the locale of the comparisons above by ICU name ("de", "sv", "" for root). False
// when ICU has no collator for it; the previous one stays.
bool SetCollationLocale(char const* localeName);

// shlwapi's search family: first (StrRChrW: last) occurrence, or null. The I forms ignore case
// by simple per-unit case folding. StrRChrW searches [s, end), or to the terminator when end
// is null.
char16_t const* StrChrW(char16_t const* s, char16_t c);
char16_t const* StrChrIW(char16_t const* s, char16_t c);
char16_t const* StrRChrW(char16_t const* s, char16_t const* end, char16_t c);
char16_t const* StrStrW(char16_t const* s, char16_t const* find);
char16_t const* StrStrIW(char16_t const* s, char16_t const* find);
char const* StrChrA(char const* s, int c);
char const* StrChrIA(char const* s, int c);
char const* StrStrA(char const* s, char const* find);
char const* StrStrIA(char const* s, char const* find);

// shlwapi's StrCmpIW and StrCmpNIW: case-blind comparison as node and key names use it.
int StrCmpIW(char16_t const* a, char16_t const* b);
int StrCmpNIW(char16_t const* a, char16_t const* b, int n);

// The C runtime's bounded comparisons. The wide case-blind one folds as the runtime's "C"
// locale does (A to Z only); wcsncmp compares code units.
int wcsncmp16(char16_t const* a, char16_t const* b, std::size_t n);
int _wcsnicmp16(char16_t const* a, char16_t const* b, std::size_t n);
int _strnicmp(char const* a, char const* b, std::size_t n);
int _stricmp(char const* a, char const* b);

// Case mapping and character classes of one 16-bit unit, as the runtime's wide functions
// answer them on Windows (Unicode properties; surrogates map to themselves).
char16_t ToUpperW(char16_t c);
char16_t ToLowerW(char16_t c);
bool IsAlphaW(char16_t c);
bool IsAlnumW(char16_t c);
bool IsDigitW(char16_t c);
bool IsPrintW(char16_t c);
bool IsSpaceW(char16_t c);

// The same for one byte, as the runtime's narrow functions answer in its default "C" locale:
// ASCII only, whatever the code page.
char ToUpperA(char c);
char ToLowerA(char c);
bool IsAlphaA(char c);
bool IsAlnumA(char c);
bool IsDigitA(char c);
bool IsPrintA(char c);
bool IsSpaceA(char c);

} // namespace qv::platform
