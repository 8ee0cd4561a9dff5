// Formatted 16-bit text, as the MSVC runtime's _vsnwprintf_s(buffer, count, _TRUNCATE, ...)
// produces it: a 16-bit format whose %s and %c take 16-bit text, %S and %hs narrow text in the
// ANSI code page, %ls and %ws 16-bit text again; the integer sizes h, hh, l (32 bits, as on
// Windows), ll, I32, I64, I, z, t, j; the conversions d i o u x X e E f F g G a A c C s S p;
// the flags - + space 0 #, and widths and precisions as numbers or *. A null string prints
// "(null)"; %p prints 16 upper-case hexadecimal digits. %n and unknown conversions make the
// format invalid, as the runtime's parameter check does. Uses no heap memory.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace qv::platform {

// Writes at most count - 1 units and a terminator. Returns the number of units written, or
// -1 when the text was cut to fit (the cut text stays in the buffer) or the format is invalid
// (the buffer then holds an empty text). -1 without writing for a null buffer or a count of 0.
int FormatWide(char16_t* buffer, std::size_t count, char16_t const* format, va_list args) noexcept;

} // namespace qv::platform
