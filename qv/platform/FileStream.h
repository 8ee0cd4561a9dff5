// The C runtime's file opening functions (_wfopen_s, _wfsopen) with the MSVC runtime's modes.
// The result is a real FILE *, usable with every stdio function; what the mode asks of the
// bytes (CR LF folding, UTF-16LE or UTF-8 with a byte order mark) is done below stdio, so
// fread, fwrite, fgetc and the 16-bit functions of WideStream.h all see what they would see
// on Windows. docs/file-streams.md tells the design.
#pragma once

#include <cstdio>

namespace qv::platform {

// Sharing flags of _wfsopen. POSIX has no mandatory sharing: every flag opens as _SH_DENYNO.
constexpr int _SH_DENYRW = 0x10;
constexpr int _SH_DENYWR = 0x20;
constexpr int _SH_DENYRD = 0x30;
constexpr int _SH_DENYNO = 0x40;

// Opens path with the runtime's mode text: "r", "w" or "a", then any of "+", "t", "b" and the
// runtime's hint letters, then optionally ",ccs=UNICODE", ",ccs=UTF-8" or ",ccs=UTF-16LE".
// Text is the default. Returns 0 and sets *stream, or an errno value (EINVAL for a bad
// argument or mode) and sets *stream to null. File names are read with '\' as a separator.
int _wfopen_s(std::FILE** stream, char16_t const* path, char16_t const* mode);
// The same, with a sharing flag; null on failure.
std::FILE* _wfsopen(char16_t const* path, char16_t const* mode, int shareFlag);

// True for a stream opened above in ANSI text mode (no "ccs"), whose 16-bit characters are
// bytes of the ANSI code page. Every other stream carries 16-bit units as two bytes.
bool IsAnsiTextStream(std::FILE* stream);

} // namespace qv::platform
