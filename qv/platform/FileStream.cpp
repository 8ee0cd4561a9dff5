#include <algorithm>
#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <optional>
#include <qv/platform/FileStream.h>
#include <qv/platform/PathText.h>
#include <shared_mutex>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qv::platform {

namespace {

// How the bytes of a text stream's file encode its characters.
enum class Encoding { Ansi, Utf16Le, Utf8 };

// The "ccs" a mode asks for. Unicode means UTF-16LE for a new file, but ANSI for an existing
// file without byte order mark, as the MSVC runtime decides.
enum class Ccs { None, Unicode, Utf8, Utf16Le };

struct Mode {
    char access = 0; // 'r', 'w' or 'a'
    bool update = false;
    bool binary = false;
    bool text = false;
    Ccs ccs = Ccs::None;
};

std::u16string_view SkipBlanks(std::u16string_view s) {
    while (!s.empty() && s.front() == u' ')
        s.remove_prefix(1);
    return s;
}

bool ParseCcs(std::u16string_view s, Mode& mode) {
    s = SkipBlanks(s);
    if (!s.starts_with(u"ccs"))
        return false;
    s = SkipBlanks(s.substr(3));
    if (!s.starts_with(u'='))
        return false;
    s = SkipBlanks(s.substr(1));
    static constexpr std::pair<std::u16string_view, Ccs> names[] = {
        {u"UNICODE", Ccs::Unicode}, {u"UTF-8", Ccs::Utf8}, {u"UTF-16LE", Ccs::Utf16Le}};
    for (auto const& [name, ccs] : names) {
        if (s.starts_with(name) && SkipBlanks(s.substr(name.size())).empty()) {
            mode.ccs = ccs;
            return true;
        }
    }
    return false;
}

// The runtime's mode text. Its hint letters (c, n, N, S, R, T, D) change nothing here.
std::optional<Mode> ParseMode(std::u16string_view s) {
    Mode mode;
    s = SkipBlanks(s);
    if (s.empty() || (s[0] != u'r' && s[0] != u'w' && s[0] != u'a'))
        return std::nullopt;
    mode.access = static_cast<char>(s[0]);
    for (s.remove_prefix(1); !s.empty() && s[0] != u','; s.remove_prefix(1)) {
        switch (s[0]) {
        case u'+':
            mode.update = true;
            break;
        case u'b':
            mode.binary = true;
            break;
        case u't':
            mode.text = true;
            break;
        case u'c':
        case u'n':
        case u'N':
        case u'S':
        case u'R':
        case u'T':
        case u'D':
        case u' ':
            break;
        default:
            return std::nullopt;
        }
    }
    if (!s.empty() && !ParseCcs(s.substr(1), mode))
        return std::nullopt;
    if (mode.binary && (mode.text || mode.ccs != Ccs::None))
        return std::nullopt;
    return mode;
}

// --- The translating layer under stdio ------------------------------------------------------

constexpr std::size_t kRawSize = 64 * 1024;
constexpr unsigned char kCtrlZ = 0x1A;

// One text stream: the file descriptor, the encoding of its bytes and the state of the
// translation. Reading delivers the runtime's view of the text (bytes for ANSI, UTF-16LE units
// otherwise) with CR LF folded to LF; writing takes that view and writes LF as CR LF.
struct TextStream {
    int fd = -1;
    Encoding encoding = Encoding::Ansi;
    off_t dataStart = 0; // behind the byte order mark
    std::FILE* file = nullptr;
    long long position = 0; // in the runtime's view

    std::vector<unsigned char> raw;
    std::size_t rawPos = 0;
    std::size_t rawEnd = 0;
    bool atEnd = false;
    unsigned char out[4] = {};
    int outLen = 0;
    int outPos = 0;

    std::vector<unsigned char> scratch;
    int pendingByte = -1;     // first byte of a UTF-16 unit whose second byte is still to come
    char16_t pendingHigh = 0; // high surrogate waiting for its partner (UTF-8 files)

    std::size_t Avail() const { return rawEnd - rawPos; }
    unsigned Unit16(std::size_t at) const { return raw[at] | (raw[at + 1] << 8); }
};

// --- Registry of text streams, which the 16-bit character functions ask about --------------

std::shared_mutex registryMutex;
std::unordered_map<std::FILE*, TextStream*> textStreams;
// Counts changes of the registry, so that a thread may keep its last answer until one happens:
// the wide functions ask once per call, and a line-by-line reader calls them very often.
std::atomic<std::uint64_t> registryGeneration{1};

void Register(TextStream* s) {
    std::unique_lock lock(registryMutex);
    textStreams.emplace(s->file, s);
    registryGeneration.fetch_add(1, std::memory_order_release);
}

void Unregister(TextStream const* s) {
    std::unique_lock lock(registryMutex);
    textStreams.erase(s->file);
    registryGeneration.fetch_add(1, std::memory_order_release);
}

// The layer under a stream opened here in a text mode, or null. It lives as long as the stream
// is open, which the caller's use of the stream guarantees.
TextStream* FindTextStream(std::FILE* stream) {
    struct Answer {
        std::FILE* stream = nullptr;
        std::uint64_t generation = 0;
        TextStream* text = nullptr;
    };
    thread_local Answer last;
    std::uint64_t const generation = registryGeneration.load(std::memory_order_acquire);
    if (last.stream == stream && last.generation == generation)
        return last.text;
    std::shared_lock lock(registryMutex);
    auto const found = textStreams.find(stream);
    last = {stream, registryGeneration.load(std::memory_order_relaxed),
            found == textStreams.end() ? nullptr : found->second};
    return last.text;
}

// --- Reading ---------------------------------------------------------------------------------

// Reads more bytes behind those not yet used. False on a read error.
bool Fill(TextStream& s) {
    if (s.rawPos > 0) {
        std::copy(s.raw.begin() + static_cast<long>(s.rawPos),
                  s.raw.begin() + static_cast<long>(s.rawEnd), s.raw.begin());
        s.rawEnd -= s.rawPos;
        s.rawPos = 0;
    }
    ssize_t got;
    do
        got = ::read(s.fd, s.raw.data() + s.rawEnd, s.raw.size() - s.rawEnd);
    while (got < 0 && errno == EINTR);
    if (got < 0)
        return false;
    if (got == 0)
        s.atEnd = true;
    s.rawEnd += static_cast<std::size_t>(got);
    return true;
}

bool Ensure(TextStream& s, std::size_t n) {
    while (s.Avail() < n && !s.atEnd)
        if (!Fill(s))
            return false;
    return true;
}

void PutUnit(TextStream& s, char32_t u) {
    s.out[s.outLen++] = static_cast<unsigned char>(u);
    s.out[s.outLen++] = static_cast<unsigned char>(u >> 8);
}

void PutCodePoint(TextStream& s, char32_t cp) {
    if (cp < 0x10000) {
        PutUnit(s, cp);
        return;
    }
    cp -= 0x10000;
    PutUnit(s, 0xD800 + (cp >> 10));
    PutUnit(s, 0xDC00 + (cp & 0x3FF));
}

// One UTF-8 sequence at rawPos; an invalid or cut sequence gives U+FFFD for its first byte.
char32_t DecodeUtf8(TextStream& s) {
    unsigned char const* p = s.raw.data() + s.rawPos;
    std::size_t const avail = s.Avail();
    int len = p[0] < 0x80                   ? 1
              : p[0] >= 0xF0 && p[0] < 0xF5 ? 4
              : p[0] >= 0xE0                ? 3
              : p[0] >= 0xC2                ? 2
                                            : 0;
    if (p[0] >= 0xF5)
        len = 0;
    char32_t cp = len == 1 ? p[0] : len == 2 ? p[0] & 0x1F : len == 3 ? p[0] & 0x0F : p[0] & 0x07;
    bool ok = len > 0 && static_cast<std::size_t>(len) <= avail;
    for (int i = 1; ok && i < len; ++i) {
        ok = (p[i] & 0xC0) == 0x80;
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    static constexpr char32_t minimum[] = {0, 0, 0x80, 0x800, 0x10000};
    if (ok)
        ok = cp >= minimum[len] && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF);
    s.rawPos += ok ? static_cast<std::size_t>(len) : 1;
    return ok ? cp : 0xFFFD;
}

// Translates the next character into s.out. False at the end or on a read error.
bool DecodeNext(TextStream& s) {
    s.outLen = s.outPos = 0;
    if (!Ensure(s, 4)) // a character and what may follow its CR
        return false;
    std::size_t const avail = s.Avail();
    switch (s.encoding) {
    case Encoding::Ansi: {
        if (avail == 0)
            return false;
        unsigned char b = s.raw[s.rawPos];
        if (b == kCtrlZ) { // the runtime's text mode ends the file at Ctrl-Z
            s.rawPos = s.rawEnd;
            s.atEnd = true;
            return false;
        }
        bool crlf = b == '\r' && avail >= 2 && s.raw[s.rawPos + 1] == '\n';
        s.rawPos += crlf ? 2 : 1;
        s.out[s.outLen++] = crlf ? '\n' : b;
        return true;
    }
    case Encoding::Utf16Le: {
        if (avail < 2) { // an odd last byte is no character
            s.rawPos = s.rawEnd;
            return false;
        }
        unsigned u = s.Unit16(s.rawPos);
        bool crlf = u == '\r' && avail >= 4 && s.Unit16(s.rawPos + 2) == '\n';
        s.rawPos += crlf ? 4 : 2;
        PutUnit(s, crlf ? u'\n' : u);
        return true;
    }
    case Encoding::Utf8:
        if (avail == 0)
            return false;
        if (s.raw[s.rawPos] == '\r' && avail >= 2 && s.raw[s.rawPos + 1] == '\n') {
            s.rawPos += 2;
            PutUnit(s, u'\n');
        } else {
            PutCodePoint(s, DecodeUtf8(s));
        }
        return true;
    }
    return false;
}

// What CopyUnits took and put out, in units.
struct Copied {
    std::size_t in = 0;
    std::size_t out = 0;
};

// Copies UTF-16LE units from in (count of them) to out (room for max), both little-endian
// bytes, in one pass that looks at thirty-two units at a time where SSE2 is there.
// - Fold: CR LF becomes LF, as reading a text stream shows it. A CR that is the last unit of in
//   stays there for the caller to bring its next unit, unless last says that none follows.
// - Line: the copy ends behind a line feed; line notes it and the first zero unit.
template <bool Fold, bool Line>
Copied CopyUnits(unsigned char const* in, std::size_t count, unsigned char* out, std::size_t max,
                 bool last, LineRead* line) {
    auto unitAt = [in](std::size_t at) {
        return static_cast<char16_t>(in[2 * at] | in[2 * at + 1] << 8);
    };
#if defined(__SSE2__)
    // A unit with no bits outside those of a line feed (0x000A) is a line feed or zero, or one
    // of the control characters 2 and 8, which the unit's own check below passes over.
    __m128i const cr = _mm_set1_epi16('\r');
    __m128i const otherBits = _mm_set1_epi16(static_cast<short>(~u'\n'));
    __m128i const zero = _mm_setzero_si128();
    auto hitsOf = [&](__m128i units) { // all bits set in a unit that is a hit
        __m128i hits = Fold ? _mm_cmpeq_epi16(units, cr) : zero;
        if (Line)
            hits = _mm_or_si128(hits, _mm_cmpeq_epi16(_mm_and_si128(units, otherBits), zero));
        return hits;
    };
#endif
    std::size_t i = 0;
    std::size_t o = 0;
    for (;;) {
#if defined(__SSE2__)
        // Sixteen units a copy, with a mask bit a unit from the tests of the two halves packed
        // into bytes.
        std::size_t const room = std::min(count - i, max - o);
        unsigned char const* const from = in + 2 * i;
        unsigned char* const to = out + 2 * o;
        auto copy16 = [&](std::size_t at) {
            __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(from + 2 * at));
            __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(from + 2 * at + 16));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 2 * at), a);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 2 * at + 16), b);
            return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(hitsOf(a), hitsOf(b))));
        };
        // Thirty-two units a round, and at the end the sixteen that end at room, of which those
        // before plain are copied again, unchanged, and not looked at. Less room is left to the
        // unit by unit copy below.
        std::size_t plain = 0;
        while (plain < room && room >= 16) {
            bool const pair = plain + 32 <= room;
            std::size_t const at = pair ? plain : std::min(plain, room - 16);
            unsigned const hits =
                (pair ? copy16(at) | copy16(at + 16) << 16 : copy16(at)) >> (plain - at);
            if (hits) {
                plain += std::countr_zero(hits);
                break;
            }
            plain = at + (pair ? 32 : 16);
        }
        i += plain; // the unit at i, if any, is a hit or there is less room than sixteen units
        o += plain;
#endif
        if (i == count || o == max)
            return {i, o};
        char16_t unit = unitAt(i++);
        if (Fold && unit == u'\r') {
            if (i == count && !last) // its next unit is still to come
                return {i - 1, o};
            if (i < count && unitAt(i) == u'\n') {
                unit = u'\n';
                ++i;
            }
        }
        out[2 * o] = static_cast<unsigned char>(unit);
        out[2 * o + 1] = static_cast<unsigned char>(unit >> 8);
        ++o;
        if (Line && line->Ends(line->taken + static_cast<long>(o) - 1, unit))
            return {i, o};
    }
}

// The common case of a UTF-16LE file: the units at hand are copied with CR LF folded. A CR whose
// next unit is not read yet stays behind for DecodeNext, which reads on.
std::size_t ReadUtf16Bulk(TextStream& s, unsigned char* buf, std::size_t size) {
    Copied const done = CopyUnits<true, false>(s.raw.data() + s.rawPos, s.Avail() / 2, buf,
                                               size / 2, false, nullptr);
    s.rawPos += 2 * done.in;
    return 2 * done.out;
}

ssize_t ReadText(void* cookie, char* buffer, std::size_t size) {
    auto& s = *static_cast<TextStream*>(cookie);
    auto* buf = reinterpret_cast<unsigned char*>(buffer);
    std::size_t n = 0;
    while (n < size) {
        if (s.outPos < s.outLen) {
            buf[n++] = s.out[s.outPos++];
            continue;
        }
        if (s.encoding == Encoding::Utf16Le)
            n += ReadUtf16Bulk(s, buf + n, size - n);
        if (n < size && !DecodeNext(s))
            break;
    }
    if (n == 0 && !s.atEnd && s.Avail() == 0 && s.outPos == s.outLen)
        return -1; // a read error, not the end
    s.position += static_cast<long long>(n);
    return static_cast<ssize_t>(n);
}

// --- Lines for the 16-bit line functions ------------------------------------------------------

#if defined(__GLIBC__)
// Units from stdio's read buffer, where getc_unlocked takes its bytes.
void TakeBufferedUnits(std::FILE* stream, char16_t* buffer, long max, LineRead& line) {
    auto const* p = reinterpret_cast<unsigned char const*>(stream->_IO_read_ptr);
    std::size_t const count =
        p ? static_cast<std::size_t>(stream->_IO_read_end - stream->_IO_read_ptr) / 2 : 0;
    Copied const done =
        CopyUnits<false, true>(p, count, reinterpret_cast<unsigned char*>(buffer + line.taken),
                               static_cast<std::size_t>(max - line.taken), true, &line);
    stream->_IO_read_ptr += 2 * done.in;
    line.taken += static_cast<long>(done.out);
}

// Whether stdio holds nothing of the stream that is still to be read: no bytes in its buffer, no
// pushed-back ones, no end or error flagged.
bool StdioHoldsNothing(std::FILE* stream) {
    return stream->_IO_read_ptr == stream->_IO_read_end && !stream->_IO_save_base &&
           (stream->_flags & (_IO_EOF_SEEN | _IO_ERR_SEEN)) == 0;
}

// Units of a UTF-16LE text stream straight from the layer, folded as ReadText folds them, with
// no copy into stdio's buffer in between. Stops at the end of the file and on a read error,
// which stdio is then to meet and flag.
void TakeLayerUnits(TextStream& s, char16_t* buffer, long max, LineRead& line) {
    while (line.taken < max && !line.lineFeed) {
        if (s.Avail() < 4 && !s.atEnd && !Fill(s))
            return;
        if (s.Avail() < 2)
            return;
        Copied const done =
            CopyUnits<true, true>(s.raw.data() + s.rawPos, s.Avail() / 2,
                                  reinterpret_cast<unsigned char*>(buffer + line.taken),
                                  static_cast<std::size_t>(max - line.taken), s.atEnd, &line);
        s.rawPos += 2 * done.in;
        s.position += 2 * static_cast<long long>(done.out);
        line.taken += static_cast<long>(done.out);
    }
}
#endif

bool WriteAll(int fd, unsigned char const* data, std::size_t size) {
    while (size > 0) {
        ssize_t done = ::write(fd, data, size);
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        data += done;
        size -= static_cast<std::size_t>(done);
    }
    return true;
}

void AppendUnit(std::vector<unsigned char>& out, char16_t u) {
    out.push_back(static_cast<unsigned char>(u));
    out.push_back(static_cast<unsigned char>(u >> 8));
}

void AppendUtf8(std::vector<unsigned char>& out, char32_t cp) {
    auto put = [&](unsigned v) { out.push_back(static_cast<unsigned char>(v)); };
    if (cp < 0x80) {
        put(cp);
    } else if (cp < 0x800) {
        put(0xC0 | (cp >> 6));
        put(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        put(0xE0 | (cp >> 12));
        put(0x80 | ((cp >> 6) & 0x3F));
        put(0x80 | (cp & 0x3F));
    } else {
        put(0xF0 | (cp >> 18));
        put(0x80 | ((cp >> 12) & 0x3F));
        put(0x80 | ((cp >> 6) & 0x3F));
        put(0x80 | (cp & 0x3F));
    }
}

// One unit of the runtime's view into a UTF-8 file; a lone surrogate becomes U+FFFD as
// Windows' conversion writes it.
void EncodeUtf8Unit(TextStream& s, char16_t u) {
    if (s.pendingHigh) {
        char16_t high = std::exchange(s.pendingHigh, 0);
        if (u >= 0xDC00 && u <= 0xDFFF) {
            AppendUtf8(s.scratch, 0x10000 + ((high - 0xD800) << 10) + (u - 0xDC00));
            return;
        }
        AppendUtf8(s.scratch, 0xFFFD);
    }
    if (u >= 0xD800 && u <= 0xDBFF)
        s.pendingHigh = u;
    else
        AppendUtf8(s.scratch, u >= 0xDC00 && u <= 0xDFFF ? 0xFFFD : u);
}

void EncodeUnit(TextStream& s, char16_t u) {
    if (s.encoding == Encoding::Utf16Le) {
        if (u == u'\n')
            AppendUnit(s.scratch, u'\r');
        AppendUnit(s.scratch, u);
        return;
    }
    if (u == u'\n')
        EncodeUtf8Unit(s, u'\r');
    EncodeUtf8Unit(s, u);
}

ssize_t WriteText(void* cookie, char const* buffer, std::size_t size) {
    auto& s = *static_cast<TextStream*>(cookie);
    auto const* buf = reinterpret_cast<unsigned char const*>(buffer);
    s.scratch.clear();
    for (std::size_t i = 0; i < size; ++i) {
        if (s.encoding == Encoding::Ansi) {
            if (buf[i] == '\n')
                s.scratch.push_back('\r');
            s.scratch.push_back(buf[i]);
        } else if (s.pendingByte < 0) {
            s.pendingByte = buf[i];
        } else {
            EncodeUnit(s, static_cast<char16_t>(s.pendingByte | (buf[i] << 8)));
            s.pendingByte = -1;
        }
    }
    if (!WriteAll(s.fd, s.scratch.data(), s.scratch.size()))
        return -1;
    s.position += static_cast<long long>(size);
    return static_cast<ssize_t>(size);
}

// Positions are those of the runtime's view. Only what text streams are used for is offered:
// telling the position and going back to the start.
int SeekText(void* cookie, off64_t* offset, int whence) {
    auto& s = *static_cast<TextStream*>(cookie);
    if (whence == SEEK_CUR && *offset == 0) {
        *offset = s.position;
        return 0;
    }
    if (whence == SEEK_SET && *offset == 0 && ::lseek(s.fd, s.dataStart, SEEK_SET) >= 0) {
        s.rawPos = s.rawEnd = 0;
        s.outPos = s.outLen = 0;
        s.atEnd = false;
        s.position = 0;
        return 0;
    }
    errno = EINVAL;
    return -1;
}

int CloseText(void* cookie) {
    auto* s = static_cast<TextStream*>(cookie);
    Unregister(s);
    if (s->pendingHigh) {
        s->scratch.clear();
        AppendUtf8(s->scratch, 0xFFFD);
        WriteAll(s->fd, s->scratch.data(), s->scratch.size());
    }
    int result = ::close(s->fd);
    delete s;
    return result;
}

// --- Opening ---------------------------------------------------------------------------------

constexpr unsigned char kBomUtf16[] = {0xFF, 0xFE};
constexpr unsigned char kBomUtf8[] = {0xEF, 0xBB, 0xBF};

// What an existing file's start says: its byte order mark decides, and without one the mode.
Encoding EncodingOfExisting(int fd, Ccs ccs, off_t& dataStart) {
    unsigned char head[3] = {};
    ssize_t got = ::pread(fd, head, 3, 0);
    dataStart = 0;
    if (ccs == Ccs::None)
        return Encoding::Ansi;
    if (got == 3 && std::equal(head, head + 3, kBomUtf8)) {
        dataStart = 3;
        return Encoding::Utf8;
    }
    if (got >= 2 && head[0] == 0xFF && head[1] == 0xFE) {
        dataStart = 2;
        return Encoding::Utf16Le;
    }
    return ccs == Ccs::Unicode ? Encoding::Ansi
           : ccs == Ccs::Utf8  ? Encoding::Utf8
                               : Encoding::Utf16Le;
}

// A new file in a "ccs" mode starts with the byte order mark of its encoding.
Encoding StartNewFile(int fd, Ccs ccs, off_t& dataStart, bool& ok) {
    dataStart = 0;
    ok = true;
    if (ccs == Ccs::None)
        return Encoding::Ansi;
    bool const utf8 = ccs == Ccs::Utf8;
    dataStart = utf8 ? 3 : 2;
    ok = WriteAll(fd, utf8 ? kBomUtf8 : kBomUtf16, static_cast<std::size_t>(dataStart));
    return utf8 ? Encoding::Utf8 : Encoding::Utf16Le;
}

// Windows cannot open a directory as a stream; POSIX can, so it is refused here.
bool IsDirectoryFd(int fd) {
    struct stat st;
    return ::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode);
}

int OpenText(std::FILE** stream, std::string const& native, Mode const& mode) {
    int const flags = mode.access == 'r' ? O_RDONLY
                      : mode.access == 'w'
                          ? O_WRONLY | O_CREAT | O_TRUNC
                          : O_RDWR | O_CREAT | O_APPEND; // reads its byte order mark
    int const fd = ::open(native.c_str(), flags | O_CLOEXEC, 0666);
    if (fd < 0)
        return errno;
    struct stat st;
    bool ok = ::fstat(fd, &st) == 0 && !S_ISDIR(st.st_mode);
    int error = ok ? 0 : EACCES;
    auto s = std::make_unique<TextStream>();
    s->fd = fd;
    if (ok && (mode.access == 'w' || (mode.access == 'a' && st.st_size == 0))) {
        s->encoding = StartNewFile(fd, mode.ccs, s->dataStart, ok);
        error = ok ? 0 : errno;
    } else if (ok) {
        s->encoding = EncodingOfExisting(fd, mode.ccs, s->dataStart);
        ok = mode.access != 'r' || ::lseek(fd, s->dataStart, SEEK_SET) >= 0;
        error = ok ? 0 : errno;
    }
    cookie_io_functions_t const io{ReadText, WriteText, SeekText, CloseText};
    if (ok) {
        s->raw.resize(mode.access == 'r' ? kRawSize : 0);
        s->file = ::fopencookie(s.get(), mode.access == 'r' ? "r" : "w", io);
        error = s->file ? 0 : ENOMEM;
    }
    if (!s->file) {
        ::close(fd);
        return error;
    }
    Register(s.get());
    *stream = s.release()->file;
    return 0;
}

int OpenBinary(std::FILE** stream, std::string const& native, Mode const& mode) {
    char text[4] = {mode.access, mode.update ? '+' : 'b', mode.update ? 'b' : '\0', '\0'};
    std::FILE* f = std::fopen(native.c_str(), text);
    if (!f)
        return errno;
    if (IsDirectoryFd(::fileno(f))) {
        std::fclose(f);
        return EACCES;
    }
    *stream = f;
    return 0;
}

} // namespace

int _wfopen_s(std::FILE** stream, char16_t const* path, char16_t const* mode) {
    if (!stream)
        return EINVAL;
    *stream = nullptr;
    if (!path || !mode || !*path)
        return EINVAL;
    std::optional<Mode> parsed = ParseMode(mode);
    // Text streams that are read and written at once are not offered: nothing here uses them.
    if (!parsed || (parsed->update && !parsed->binary))
        return EINVAL;
    std::string const native = NativePath(path);
    return parsed->binary ? OpenBinary(stream, native, *parsed) : OpenText(stream, native, *parsed);
}

std::FILE* _wfsopen(char16_t const* path, char16_t const* mode, int shareFlag) {
    if (shareFlag != _SH_DENYRW && shareFlag != _SH_DENYWR && shareFlag != _SH_DENYRD &&
        shareFlag != _SH_DENYNO) {
        errno = EINVAL;
        return nullptr;
    }
    std::FILE* f = nullptr;
    int const error = _wfopen_s(&f, path, mode);
    if (error)
        errno = error;
    return f;
}

bool IsAnsiTextStream(std::FILE* stream) {
    TextStream const* text = FindTextStream(stream);
    return text && text->encoding == Encoding::Ansi;
}

bool TakeLineUnits(std::FILE* stream, char16_t* buffer, long max, LineRead& line) {
    TextStream* const text = FindTextStream(stream);
    if (text && text->encoding == Encoding::Ansi)
        return false;
#if defined(__GLIBC__)
    TakeBufferedUnits(stream, buffer, max, line);
    if (text && text->encoding == Encoding::Utf16Le && !text->raw.empty() &&
        text->outPos == text->outLen && StdioHoldsNothing(stream))
        TakeLayerUnits(*text, buffer, max, line);
#else
    (void)buffer, (void)max, (void)line;
#endif
    return true;
}

} // namespace qv::platform
