// The number functions of the MSVC runtime, on ANSI bytes and on 16-bit text. The C library's
// own functions differ from them where callers notice (atoi saturates at the int range, scanf
// fails on a dangling exponent, _i64toa_s shows negative numbers of other radices as their
// two's complement), and the 16-bit forms do not exist on Linux at all. The narrow functions
// carry the runtime's names inside this namespace; call them qualified.
//
// Numbers are read in the "C" rules whatever the process locale: the decimal point is '.'.
// White space is the runtime's isspace for bytes and iswspace for 16-bit units.
#pragma once

#include <cstddef>

namespace qv::platform {

// Leading white space, an optional sign and decimal digits; 0 when there are none. Values
// beyond the int range give INT_MAX or INT_MIN. The 16-bit form also reads the decimal digits
// of the Arabic, Indic, South-East Asian and Mongolian scripts and the full-width ones
// ("１２" and "١٢" give 12); superscripts and other scripts' digits end the number.
int atoi(char const* text);
int _wtoi(char16_t const* text);

// Leading white space, an optional sign, and digits in base 2 to 36 (letters of either case
// above 9; the decimal digits _wtoi reads); base 0 chooses 16 for a "0x" prefix, 8 for a
// leading 0, else 10; base 16 accepts the prefix. The value is 32 bits, as unsigned long is on
// Windows: beyond 0xFFFFFFFF it saturates there and errno becomes ERANGE; a minus sign then
// negates modulo 2^32 ("-1" gives 0xFFFFFFFF). *end, when end is not null, points behind the
// last digit, or at text when there was no number ("0x" alone reads nothing). A bad base or a
// null text gives 0 with errno EINVAL.
unsigned long wcstoul(char16_t const* text, char16_t** end, int base);

// Leading white space and the longest prefix that strtod reads: decimal or hexadecimal
// ("0x1.8p3") numbers, "inf", "infinity", "nan" and "nan(...)", any case. A decimal exponent
// may be marked with d or D as with e ("1d3" is 1000). 0 when there is no number; overflow
// gives an infinity, underflow 0 or a subnormal value.
double atof(char const* text);
double _wtof(char16_t const* text);

// The digits of value in radix 2 to 36, lower-case, terminated. Radix 10 shows a minus sign;
// other radices show the unsigned 64-bit two's complement. 0 on success, EINVAL for a null
// buffer or a bad radix, ERANGE when size cannot take the digits and the terminator. On an
// error with a usable buffer, the buffer holds empty text.
int _i64toa_s(long long value, char* buffer, std::size_t size, int radix);
int _i64tow_s(long long value, char16_t* buffer, std::size_t size, int radix);

// sscanf and swscanf for the formats the library scans: white space (skips any), literal
// characters, %%, and the conversions %d %u %x %X %o (with h, l, ll or I64: short, long,
// long long targets), %e %f %g %E %G (float, or double with l; a d exponent as in atof),
// %c (one unit of the text's width). As in the MSVC runtime, a conversion reads the longest text
// that can begin a number and fails when that text is not one ("1e", "0x", "infin"); integers wrap
// modulo their width. Returns the number of fields stored, or -1 (EOF) when the text ended before
// the first conversion. A directive outside this set ends the scan, as a failure to match does.
int sscanf(char const* text, char const* format, ...);
int swscanf(char16_t const* text, char16_t const* format, ...);

// The value of a hexadecimal digit, either case; -1 for any other unit.
constexpr int HexDigitValue(char16_t c) {
    return c >= u'0' && c <= u'9'   ? c - u'0'
           : c >= u'a' && c <= u'f' ? c - u'a' + 10
           : c >= u'A' && c <= u'F' ? c - u'A' + 10
                                    : -1;
}

} // namespace qv::platform
