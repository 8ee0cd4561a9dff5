// Helpers shared by the string suites: typed tests run every case on both twins.
#pragma once

#include <gtest/gtest.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <string>

// An ASCII literal in the unit type of S.
template <class S>
struct Lit;

template <>
struct Lit<BString> {
    std::string text;
    explicit Lit(char const* ascii) : text(ascii) {}
    char const* get() const { return text.c_str(); }
};

template <>
struct Lit<WString> {
    std::u16string text;
    explicit Lit(char const* ascii) : text(ascii, ascii + std::char_traits<char>::length(ascii)) {}
    char16_t const* get() const { return text.c_str(); }
};

// Makes the string S holding ascii.
template <class S>
S Make(char const* ascii) {
    return S(Lit<S>(ascii).get());
}

// The string's text as ASCII, for readable failure messages.
template <class S>
std::string Ascii(S const& s) {
    std::string out;
    for (auto p = s.CStr(); *p; ++p)
        out += static_cast<char>(*p);
    return out;
}

using StringTypes = ::testing::Types<BString, WString>;

inline void PrintTo(WString const& s, std::ostream* os) {
    *os << '"' << s.ToUtf8() << '"';
}
inline void PrintTo(BString const& s, std::ostream* os) {
    *os << '"' << s.CStr() << '"';
}
