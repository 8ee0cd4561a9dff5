// The C runtime's 16-bit character functions on a FILE *, for streams of any mode. On Windows
// the runtime remembers how a stream was opened ("rb", "rt", "wt,ccs=UTF-16LE" ...) and reads
// and writes wide characters accordingly; here the platform's file layer keeps that mode for
// the streams it opens. A stream opened elsewhere counts as binary: a unit is two bytes,
// little-endian, as MSVC reads wide characters from a binary stream.
#pragma once

#include <cstdio>

namespace qv::platform {

// WEOF of the 16-bit runtime.
constexpr int kWEOF = 0xFFFF;

// One unit, or kWEOF at the end of the file or on an error.
int fgetwc16(std::FILE* stream);
// Reads at most count - 1 units, up to and including a line feed, and terminates them.
// Null when nothing could be read.
char16_t* fgetws16(char16_t* buffer, int count, std::FILE* stream);
// Writes one unit; returns it, or kWEOF on an error.
int fputwc16(char16_t c, std::FILE* stream);
// Writes the text without its terminator; a non-negative value, or -1 on an error.
int fputws16(char16_t const* text, std::FILE* stream);

} // namespace qv::platform
