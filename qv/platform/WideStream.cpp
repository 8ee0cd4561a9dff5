#include <algorithm>
#include <cstring>
#include <qv/platform/FileStream.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <utility>

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

// The units in [p, p + 2 * units) before and including the first line feed, found with memchr.
long UnitsThroughLineFeed(unsigned char const* p, long units, bool& lineFeed) {
    unsigned char const* const end = p + 2 * units;
    for (auto const* q = p; (q = static_cast<unsigned char const*>(std::memchr(q, '\n', end - q)));
         ++q) {
        if ((q - p) % 2 == 0 && q[1] == 0) {
            lineFeed = true;
            return (q - p) / 2 + 1;
        }
    }
    lineFeed = false;
    return units;
}

// Units straight from stdio's read buffer, as getc_unlocked takes its bytes from there, up to
// and including a line feed; the buffer is refilled through getc_unlocked. Returns the units
// taken and whether a line feed ended them.
std::pair<int, bool> TakeBufferedUnits(std::FILE* stream, char16_t* out, int max) {
#if defined(__GLIBC__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    auto const* p = reinterpret_cast<unsigned char const*>(stream->_IO_read_ptr);
    bool lineFeed = false;
    if (!p || stream->_IO_read_end - stream->_IO_read_ptr < 2)
        return {0, false}; // nothing buffered yet
    long const units = UnitsThroughLineFeed(
        p, std::min<long>((stream->_IO_read_end - stream->_IO_read_ptr) / 2, max), lineFeed);
    std::memcpy(out, p, static_cast<std::size_t>(2 * units));
    stream->_IO_read_ptr += 2 * units;
    return {static_cast<int>(units), lineFeed};
#else
    (void)stream, (void)out, (void)max;
    return {0, false};
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
    bool const ansi = IsAnsiTextStream(stream);
    StreamLock lock(stream);
    int n = 0;
    while (n < count - 1) {
        if (!ansi) {
            auto const [taken, lineFeed] = TakeBufferedUnits(stream, buffer + n, count - 1 - n);
            n += taken;
            if (lineFeed || n == count - 1)
                break;
        }
        int const c = NextUnlocked(stream, ansi);
        if (c == kWEOF)
            break;
        buffer[n++] = static_cast<char16_t>(c);
        if (c == u'\n')
            break;
    }
    buffer[n] = 0;
    return n ? buffer : nullptr;
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
