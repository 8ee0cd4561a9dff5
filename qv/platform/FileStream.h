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

// A line as the 16-bit line functions (WideStream.h) read it so far: its units in the caller's
// buffer, whether a line feed ended them, and the index of the first zero unit (-1 if none).
struct LineRead {
    long taken = 0;
    bool lineFeed = false;
    long zero = -1;

    // Notes the unit at index at; true for a line feed, which ends the line.
    bool Ends(long at, char16_t unit) {
        if (unit == 0 && zero < 0)
            zero = at;
        lineFeed = unit == u'\n';
        return lineFeed;
    }
};

// Continues line in buffer, up to max units in all and through a line feed, with the units of a
// stream that carries two bytes per unit, for a caller that holds the stream's lock. They come
// from stdio's read buffer, as getc_unlocked would take them, and once that is empty, for a
// UTF-16LE text stream, straight from the layer under stdio, which spares a copy. Where neither
// has units at hand, the caller reads on through stdio, which refills its buffer and flags the
// end or an error. False, with nothing taken, for an ANSI text stream, whose units are bytes.
bool TakeLineUnits(std::FILE* stream, char16_t* buffer, long max, LineRead& line);

} // namespace qv::platform
