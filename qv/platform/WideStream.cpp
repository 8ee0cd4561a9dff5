#include <algorithm>
#include <bit>
#include <cstring>
#include <qv/platform/FileStream.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qv::platform {

namespace {

// Holds the stream's lock for a run of unlocked reads or writes, as the runtime does per call.
class StreamLock {
public:
    explicit StreamLock(std::FILE* f) : m_file(f) { ::flockfile(f); }
    ~StreamLock() { ::funlockfile(m_file); }
    StreamLock(StreamLock const&) = delete;
    StreamLock& operator=(StreamLock const&) = delete;

private:
    std::FILE* m_file;
};

// One byte of an ANSI text stream as a 16-bit character. The MSVC runtime converts in its
// default "C" locale, where a byte is the character of the same value.
int AnsiUnit(int byte) {
    return byte == EOF ? kWEOF : byte;
}

// Two bytes, little-endian: a binary stream, or the UTF-16 view of a Unicode text stream.
int UnitUnlocked(std::FILE* stream) {
    int const lo = getc_unlocked(stream);
    if (lo == EOF)
        return kWEOF;
    int const hi = getc_unlocked(stream);
    return hi == EOF ? kWEOF : lo | (hi << 8);
}

// A line as read so far: its units, whether a line feed ended them, and the index of the first
// zero unit (-1 while there is none).
struct LineRead {
    long taken = 0;
    bool lineFeed = false;
    long zero = -1;
};

// Notes a unit of the line at index at; true for the line feed that ends it.
bool EndsLine(LineRead& line, long at, char16_t unit) {
    if (unit == 0 && line.zero < 0)
        line.zero = at;
    line.lineFeed = unit == u'\n';
    return line.lineFeed;
}

// Copies units from p (bytes, little-endian) behind the line's units in buffer, at most max of
// them, up to and including a line feed. Copying and looking for the line feed and a zero unit
// is one pass.
void CopyLineUnits(unsigned char const* p, long max, char16_t* buffer, LineRead& line) {
    char16_t* const out = buffer + line.taken;
    auto unitAt = [p](long at) { return static_cast<char16_t>(p[2 * at] | p[2 * at + 1] << 8); };
    long i = 0;
#if defined(__SSE2__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    // One test finds both: a unit with no bits outside those of a line feed (0x000A) is a
    // line feed or zero, or one of the control characters 2 and 8, which EndsLine passes over.
    __m128i const otherBits = _mm_set1_epi16(static_cast<short>(~u'\n'));
    __m128i const zero = _mm_setzero_si128();
    auto copy8 = [&](long at) { // the units' hits, two bits each
        __m128i const v = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p + 2 * at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), v);
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, otherBits), zero)));
    };
    for (; i + 16 <= max; i += 16) {
        for (unsigned hits = copy8(i) | copy8(i + 8) << 16; hits;
             hits &= hits - 1, hits &= hits - 1) {
            long const at = i + std::countr_zero(hits) / 2;
            if (EndsLine(line, line.taken + at, unitAt(at))) {
                line.taken += at + 1;
                return;
            }
        }
    }
#endif
    for (; i < max; ++i) {
        out[i] = unitAt(i);
        if (EndsLine(line, line.taken + i, out[i])) {
            line.taken += i + 1;
            return;
        }
    }
    line.taken += max;
}

// Units straight from stdio's read buffer, as getc_unlocked takes its bytes from there, up to
// and including a line feed; the buffer is refilled through getc_unlocked.
void TakeBufferedUnits(std::FILE* stream, long max, char16_t* buffer, LineRead& line) {
#if defined(__GLIBC__)
    auto const* p = reinterpret_cast<unsigned char const*>(stream->_IO_read_ptr);
    if (!p || stream->_IO_read_end - stream->_IO_read_ptr < 2)
        return; // nothing buffered yet
    long const before = line.taken;
    CopyLineUnits(p, std::min<long>((stream->_IO_read_end - stream->_IO_read_ptr) / 2, max), buffer,
                  line);
    stream->_IO_read_ptr += 2 * (line.taken - before);
#else
    (void)stream, (void)max, (void)buffer, (void)line;
#endif
}

int NextUnlocked(std::FILE* stream, bool ansi) {
    return ansi ? AnsiUnit(getc_unlocked(stream)) : UnitUnlocked(stream);
}

} // namespace

int fgetwc16(std::FILE* stream) {
    if (!stream)
        return kWEOF;
    bool const ansi = IsAnsiTextStream(stream);
    StreamLock lock(stream);
    return NextUnlocked(stream, ansi);
}

char16_t* fgetws16(char16_t* buffer, int count, std::FILE* stream) {
    if (!buffer || count <= 0 || !stream)
        return nullptr;
    StreamLock lock(stream);
    return GetLineUnlocked(buffer, count, stream) < 0 ? nullptr : buffer;
}

int GetLineUnlocked(char16_t* buffer, int count, std::FILE* stream) {
    bool const ansi = IsAnsiTextStream(stream);
    LineRead line;
    while (line.taken < count - 1) {
        if (!ansi) {
            TakeBufferedUnits(stream, count - 1 - line.taken, buffer, line);
            if (line.lineFeed || line.taken == count - 1)
                break;
        }
        int const c = NextUnlocked(stream, ansi);
        if (c == kWEOF)
            break;
        buffer[line.taken] = static_cast<char16_t>(c);
        if (EndsLine(line, line.taken++, static_cast<char16_t>(c)))
            break;
    }
    buffer[line.taken] = 0;
    return line.taken == 0 ? -1 : static_cast<int>(line.zero >= 0 ? line.zero : line.taken);
}

void _lock_file(std::FILE* stream) {
    ::flockfile(stream);
}

void _unlock_file(std::FILE* stream) {
    ::funlockfile(stream);
}

int fputwc16(char16_t c, std::FILE* stream) {
    return fputws16(std::u16string(1, c).c_str(), stream) < 0 ? kWEOF : c;
}

int fputws16(char16_t const* text, std::FILE* stream) {
    if (!text || !stream)
        return -1;
    std::u16string_view const view(text);
    std::string bytes;
    bool const ansi = IsAnsiTextStream(stream);
    bytes.reserve(view.size() * 2);
    for (char16_t u : view) {
        // The "C" locale has no byte for a character above 0xFF: writing stops there.
        if (ansi && u > 0xFF) {
            std::fwrite(bytes.data(), 1, bytes.size(), stream);
            return -1;
        }
        bytes.push_back(static_cast<char>(u & 0xFF));
        if (!ansi)
            bytes.push_back(static_cast<char>(u >> 8));
    }
    return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() ? 0 : -1;
}

} // namespace qv::platform
