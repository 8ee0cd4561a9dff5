// vsnprintf_s and _vsnwprintf_s of the MSVC runtime, for ANSI bytes and 16-bit text.
//
// Formats follow the MSVC runtime rather than glibc, since the strings they build travel into
// files and user-visible text that the Windows library made the same way:
// - In a 16-bit format %s and %c take 16-bit text and units, %S, %hs and %hc narrow ones; in a
//   narrow format %s and %c are narrow, %S, %ls, %ws, %C and %lc take 16-bit text. Text of the
//   other width passes through the ANSI code page. A null text prints "(null)". The character
//   0 prints as one zero unit and counts in the length.
// - Size prefixes h, hh, l, ll, j, z, t, L, I, I32 and I64. %ld reads a long, which is 64 bits
//   here: the caller passes what its own type is.
// - %p prints 16 upper-case hexadecimal digits; %a prints 13 hexadecimal digits unless a
//   precision is given; infinities and NaNs print as "inf", "nan", "-nan(ind)" (the default
//   NaN) and "nan(snan)", upper-case for %E, %F, %G, %A, padded with blanks even with the 0
//   flag. The 0 flag pads strings and characters with zeros, as the MSVC runtime does.
// - %n and unknown conversions are invalid: the result is -1 with errno EINVAL and empty text.
//
// At most min(count, size - 1) characters are written, then the terminator. The result is the
// length, or -1 when the text did not fit (the buffer then holds the part that fitted) or the
// arguments are invalid (errno EINVAL).
#pragma once

#include <cstdarg>
#include <cstddef>

namespace qv::platform {

int vsnprintf_s(char* buffer, std::size_t size, std::size_t count, char const* format,
                va_list args);
int _vsnwprintf_s(char16_t* buffer, std::size_t size, std::size_t count, char16_t const* format,
                  va_list args);

} // namespace qv::platform
