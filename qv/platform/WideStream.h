// The C runtime's 16-bit character functions on a FILE *, for streams of any mode, as the MSVC
// runtime reads and writes wide characters for the mode a stream was opened with:
// - a Unicode text stream of FileStream.h ("ccs=", with a UTF-16LE or UTF-8 file): the layer
//   under stdio already presents UTF-16LE units with CR LF folded, so a unit is two bytes;
// - an ANSI text stream of FileStream.h ("rt", "wt", "at", or "ccs=UNICODE" on an existing
//   file without byte order mark): a unit is one byte, CR LF folded, converted as the runtime's
//   default "C" locale converts: a byte is the character of its value, and a character above
//   0xFF cannot be written;
// - any other stream, opened in binary mode or outside FileStream.h: a unit is two bytes,
//   little-endian.
// Formatted wide writes are a WString formatted in memory and written with fputws16.
#pragma once

#include <cstdio>
#include <stdio.h>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define QV_KNOWS_SINGLE_THREADED 1
#endif

namespace qv::platform {

// WEOF of the 16-bit runtime.
constexpr int kWEOF = 0xFFFF;

// One unit, or kWEOF at the end of the file or on an error.
int fgetwc16(std::FILE* stream);
// Reads at most count - 1 units, up to and including a line feed, and terminates them.
// Null when nothing could be read.
char16_t* fgetws16(char16_t* buffer, int count, std::FILE* stream);
// fgetws16 for a caller that holds the stream's lock (_lock_file). Returns the length of the
// text read as lstrlenW would measure it, up to a zero unit, or -1 when nothing could be read.
int GetLineUnlocked(char16_t* buffer, int count, std::FILE* stream);
// Takes and gives up the stream's lock, which its owner may take again: a run of calls on the
// stream then pays for the lock once, as each call's own locking becomes a nested one.
void _lock_file(std::FILE* stream);
void _unlock_file(std::FILE* stream);

// Holds a stream's lock over a run of unlocked calls on it (_lock_file to _unlock_file) that
// starts no thread. A process that has never started a second thread has nobody to keep out,
// so there the lock is not taken, as glibc's own stdio calls skip theirs; the guard remembers
// what it did for its release. Taking the lock costs two atomic operations, which a
// line-by-line reader would pay on every line.
class StreamLock {
public:
    explicit StreamLock(std::FILE* stream) : m_stream(stream), m_locked(!SingleThreaded()) {
        if (m_locked)
            ::flockfile(stream);
    }
    ~StreamLock() {
        if (m_locked)
            ::funlockfile(m_stream);
    }
    StreamLock(StreamLock const&) = delete;
    StreamLock& operator=(StreamLock const&) = delete;

    // feof for the holder of the lock.
    bool EndFlagged() const { return ::feof_unlocked(m_stream) != 0; }

private:
    static bool SingleThreaded() {
#ifdef QV_KNOWS_SINGLE_THREADED
        return __libc_single_threaded != 0;
#else
        return false;
#endif
    }

    std::FILE* m_stream;
    bool m_locked;
};
// Writes one unit; returns it, or kWEOF on an error.
int fputwc16(char16_t c, std::FILE* stream);
// Writes the text without its terminator; a non-negative value, or -1 on an error.
int fputws16(char16_t const* text, std::FILE* stream);

} // namespace qv::platform
