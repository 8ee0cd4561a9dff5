// Helpers shared by the string suites: typed tests run every case on both twins.
#pragma once

#include <gtest/gtest.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <string>
#include <type_traits>

// The unit type of S.
template <class S>
using UnitOf = std::remove_cv_t<std::remove_pointer_t<decltype(S().CStr())>>;

// An ASCII literal in the unit type of S.
template <class S>
std::basic_string<UnitOf<S>> Lit(char const* ascii) {
    return {ascii, ascii + std::char_traits<char>::length(ascii)};
}

// Makes the string S holding ascii.
template <class S>
S Make(char const* ascii) {
    return S(Lit<S>(ascii).c_str());
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
