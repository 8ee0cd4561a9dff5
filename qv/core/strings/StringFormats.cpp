// The string formats that WString and BString share: numbers, Printf, the printable and
// escaped forms, the binary record and line reading. They are members of StringBase but live
// apart from its text operations (StringBase.cpp), as a second source of the same class
// template; the explicit instantiations at the end make them for both twins. The platform
// functions they stand on carry the MSVC runtime's behaviour (qv/platform/WideNumbers.h,
// WideFormat.h, WideStream.h).
#include <array>
#include <bit>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/StringBase.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/WideFormat.h>
#include <qv/platform/WideNumbers.h>
#include <qv/platform/WideStream.h>
#include <string>

namespace {

// The runtime function of each width.
int FormatInto(char* b, std::size_t n, std::size_t c, char const* f, va_list a) {
    return qv::platform::vsnprintf_s(b, n, c, f, a);
}
int FormatInto(char16_t* b, std::size_t n, std::size_t c, char16_t const* f, va_list a) {
    return qv::platform::_vsnwprintf_s(b, n, c, f, a);
}
int ToInt(char const* t) {
    return qv::platform::atoi(t);
}
int ToInt(char16_t const* t) {
    return qv::platform::_wtoi(t);
}
double ToDouble(char const* t) {
    return qv::platform::atof(t);
}
double ToDouble(char16_t const* t) {
    return qv::platform::_wtof(t);
}
int IntToText(long long v, char* b, std::size_t n, int radix) {
    return qv::platform::_i64toa_s(v, b, n, radix);
}
int IntToText(long long v, char16_t* b, std::size_t n, int radix) {
    return qv::platform::_i64tow_s(v, b, n, radix);
}
template <class... A>
int Scan(char const* text, char const* format, A... args) {
    return qv::platform::sscanf(text, format, args...);
}
template <class... A>
int Scan(char16_t const* text, char16_t const* format, A... args) {
    return qv::platform::swscanf(text, format, args...);
}
// A piece of a line, read as fgets reads it; the length of its text, or -1 if nothing was read.
int GetLine(char* b, int n, std::FILE* s) {
    return std::fgets(b, n, s) ? static_cast<int>(std::strlen(b)) : -1;
}
int GetLine(char16_t* b, int n, std::FILE* s) {
    return qv::platform::GetLineUnlocked(b, n, s);
}

// An ASCII format in the string's own width.
template <class Unit, std::size_t N>
constexpr std::array<Unit, N> Text(char const (&ascii)[N]) {
    std::array<Unit, N> out{};
    for (std::size_t i = 0; i < N; ++i)
        out[i] = static_cast<Unit>(ascii[i]);
    return out;
}

template <class Unit>
int HexValue(Unit c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f')
        return (c | 0x20) - 'a' + 10;
    return -1;
}

// Rounds half away from zero and saturates, as the wide Convert(int &) always did. A NaN gives
// INT_MIN, the value x86 conversion yields for it.
int RoundToInt(double d) {
    if (std::isnan(d) || d <= INT_MIN)
        return INT_MIN;
    if (d >= INT_MAX)
        return INT_MAX;
    return static_cast<int>(d < 0 ? d - 0.5 : d + 0.5);
}

// Records are little-endian; the in-memory units are written as they are.
static_assert(std::endian::native == std::endian::little, "the record writer needs a port");

std::size_t ReadFile(void* stream, void* data, std::size_t bytes) {
    return std::fread(data, 1, bytes, static_cast<std::FILE*>(stream));
}
bool WriteFile(void* stream, void const* data, std::size_t bytes) {
    return std::fwrite(data, 1, bytes, static_cast<std::FILE*>(stream)) == bytes;
}

} // namespace

// ---- numbers --------------------------------------------------------------------------------

template <class S, class Unit>
int StringBase<S, Unit>::AtoI() const {
    return ToInt(CStr());
}

template <class S, class Unit>
double StringBase<S, Unit>::AtoF() const {
    return ToDouble(CStr());
}

template <class S, class Unit>
S& StringBase<S, Unit>::ItoA(long long value, int radix) {
    Unit digits[66];
    if (IntToText(value, digits, 66, radix) == 0)
        *this = digits;
    return Self();
}

template <class S, class Unit>
S StringBase<S, Unit>::FromInt(long long value) {
    S s;
    s.ItoA(value, 10);
    return s;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Convert(float& value) const {
    Unit rest;
    return Scan(CStr(), Text<Unit>(" %g %c").data(), &value, &rest) == 1;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Convert(double& value) const {
    Unit rest;
    return Scan(CStr(), Text<Unit>(" %lg %c").data(), &value, &rest) == 1;
}

template <class S, class Unit>
bool StringBase<S, Unit>::Convert(int& value) const {
    Unit rest;
    if constexpr (Traits::kConvertIntRounds) {
        double d;
        if (Scan(CStr(), Text<Unit>(" %lg %c").data(), &d, &rest) == 1) {
            value = RoundToInt(d);
            return true;
        }
    } else {
        if (Scan(CStr(), Text<Unit>(" %d %c").data(), &value, &rest) == 1)
            return true;
    }
    return Scan(CStr(), Text<Unit>(" %x %c").data(), &value, &rest) == 1;
}

// ---- formatted text -------------------------------------------------------------------------

template <class S, class Unit>
void StringBase<S, Unit>::PrintfArgs(Unit const* format, ...) {
    va_list args;
    va_start(args, format);
    VPrintf(format, args);
    va_end(args);
}

template <class S, class Unit>
void StringBase<S, Unit>::VPrintf(Unit const* format, va_list args) {
    if (!format) {
        Clear();
        return;
    }
    // Ordinary text fits the fixed buffer and costs only the allocation of the result.
    constexpr std::size_t kFixed = Traits::kPrintfBuffer;
    Unit fixed[kFixed];
    errno = 0;
    int n = FormatInto(fixed, kFixed, kFixed - 1, format, args);
    // A zero unit in the arguments (%c of 0) ends the text early; the string ends there.
    auto const formatted = [](Unit const* text, size_type length) {
        Block* b = CreateShared(text, length, length);
        b->KeepLength(Traits::Length(b->Text()));
        return b;
    };
    if (n >= 0) {
        Reset(n ? formatted(fixed, size_type(n)) : nullptr);
        return;
    }
    // An invalid format fails at every size: there is nothing to retry.
    if (errno == EINVAL) {
        Clear();
        return;
    }
    if constexpr (!Traits::kPrintfKeepsTextOnFailure)
        Clear();
    for (std::size_t size = 32768; size <= (std::size_t{1} << 40); size *= 2) {
        std::unique_ptr<Unit[]> heap(new (std::nothrow) Unit[size]);
        if (!heap)
            return;
        n = FormatInto(heap.get(), size, size - 1, format, args);
        if (n >= 0) {
            Reset(formatted(heap.get(), size_type(n)));
            return;
        }
    }
}

// ---- visible and escaped forms ---------------------------------------------------------------

template <class S, class Unit>
S StringBase<S, Unit>::Printable() const {
    size_type extra = 0;
    Unit const* text = CStr();
    for (Unit const* p = text; *p; ++p)
        if (Traits::NeedsEscape(*p))
            extra += (*p == '\t' || *p == '\n' || *p == '\r' || *p == '\\') ? 1 : 3;
    if (!extra)
        return static_cast<S const&>(*this);
    size_type length = Length();
    Block* block = CreateShared(length + extra);
    Unit* out = block->Text();
    for (Unit const* p = text; *p; ++p) {
        Unit c = *p;
        if (!Traits::NeedsEscape(c)) {
            *out++ = c;
            continue;
        }
        *out++ = '\\';
        if (c == '\t' || c == '\n' || c == '\r' || c == '\\') {
            *out++ = c == '\t' ? Unit('t') : c == '\n' ? Unit('n') : c == '\r' ? Unit('r') : c;
            continue;
        }
        auto low = static_cast<unsigned char>(c);
        *out++ = 'x';
        *out++ = static_cast<Unit>("0123456789abcdef"[low >> 4]);
        *out++ = static_cast<Unit>("0123456789abcdef"[low & 15]);
    }
    block->End(static_cast<size_type>(out - block->Text()));
    return Adopt(block);
}

template <class S, class Unit>
void StringBase<S, Unit>::ResolveEsc() {
    if (IsEmpty())
        return;
    Unshare();
    // The output never runs ahead of the input, so the text is rewritten in place.
    Unit* out = m_block->Text();
    Unit const* p = out;
    while (*p) {
        if (*p != '\\') {
            *out++ = *p++;
            continue;
        }
        Unit next = p[1];
        if (next == 'n' || next == 'r' || next == 't' || next == '\\') {
            *out++ = next == 'n'   ? Unit('\n')
                     : next == 'r' ? Unit('\r')
                     : next == 't' ? Unit('\t')
                                   : next;
            p += 2;
        } else if (next == 'x') {
            int hi = HexValue(p[2]);
            int lo = hi < 0 ? -1 : HexValue(p[3]);
            if (lo >= 0)
                *out++ = static_cast<Unit>(hi * 16 + lo);
            // Four characters go, but never past the end of the text.
            p += !p[2] ? 2 : !p[3] ? 3 : 4;
        } else {
            *out++ = *p++;
        }
    }
    *out = 0;
    m_block->ForgetLength(); // an escape may have made a zero unit, which ends the text
}

// ---- file forms -----------------------------------------------------------------------------

template <class S, class Unit>
bool StringBase<S, Unit>::WriteRecord(RecordWrite write, void* stream) const {
    size_type n = Length();
    if (!stream || n > 0xFFFFFFFFu)
        return false;
    std::uint32_t header[2] = {static_cast<std::uint32_t>(n), ~static_cast<std::uint32_t>(n)};
    Unit const terminator = 0;
    return write(stream, header, sizeof header) &&
           (n == 0 || write(stream, CStr(), n * sizeof(Unit))) &&
           write(stream, &terminator, sizeof terminator);
}

template <class S, class Unit>
bool StringBase<S, Unit>::ReadRecord(RecordRead read, void* stream) {
    std::uint32_t header[2];
    if (!stream || read(stream, header, sizeof header) != sizeof header || header[1] != ~header[0])
        return false;
    // Read in pieces, so that a damaged length costs no more memory than the file holds.
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    std::basic_string<Unit> text;
    Unit terminator = 1;
    for (std::size_t have = 0; have < header[0];) {
        std::size_t piece = std::min<std::size_t>(header[0] - have, kPiece);
        text.resize(have + piece);
        if (read(stream, text.data() + have, piece * sizeof(Unit)) != piece * sizeof(Unit)) {
            Clear();
            return false;
        }
        have += piece;
    }
    if (read(stream, &terminator, sizeof terminator) != sizeof terminator || terminator != 0) {
        Clear();
        return false;
    }
    *this = S(std::basic_string_view<Unit>(text));
    return true;
}

template <class S, class Unit>
bool StringBase<S, Unit>::FRead(std::FILE* stream) {
    return ReadRecord(ReadFile, stream);
}

template <class S, class Unit>
bool StringBase<S, Unit>::FWrite(std::FILE* stream) const {
    return WriteRecord(WriteFile, stream);
}

template <class S, class Unit>
bool StringBase<S, Unit>::ReadLn(std::FILE* stream) {
    if (!stream)
        return false;
    // One lock for the test and all the pieces of the line.
    qv::platform::StreamLock const lock(stream);
    if (lock.EndFlagged())
        return false;
    // Emptied, but with a private block, as the line is built in it. The pieces are read
    // straight into the block's free tail, so a line costs one pass over each piece and, once
    // the block holds a piece, no allocation.
    constexpr size_type kPiece = 511;
    if (!m_block || m_block->count.load(std::memory_order_acquire) > 1)
        Reset(CreateShared(kPiece));
    // Every piece is terminated, so should reading throw, a scan finds where the text ends.
    m_block->ForgetLength();
    size_type length = 0;
    for (;;) {
        Unit* piece = TailRoom(length, kPiece);
        int const got = GetLine(piece, kPiece + 1, stream);
        if (got < 0) {
            piece[0] = 0; // fgets leaves the buffer undefined on an error
            break;
        }
        auto const n = static_cast<size_type>(got);
        length += n;
        if (n < kPiece || piece[n - 1] == Unit('\n'))
            break;
    }
    Unit const* text = m_block->Text();
    while (length > 0 && text[length - 1] == Unit('\n'))
        --length;
    m_block->End(length);
    return true;
}

// ---- instantiation for both twins -----------------------------------------------------------

#define QV_STRING_FORMATS(S, Unit)                                                                 \
    template int StringBase<S, Unit>::AtoI() const;                                                \
    template double StringBase<S, Unit>::AtoF() const;                                             \
    template S& StringBase<S, Unit>::ItoA(long long, int);                                         \
    template S StringBase<S, Unit>::FromInt(long long);                                            \
    template bool StringBase<S, Unit>::Convert(float&) const;                                      \
    template bool StringBase<S, Unit>::Convert(double&) const;                                     \
    template bool StringBase<S, Unit>::Convert(int&) const;                                        \
    template void StringBase<S, Unit>::PrintfArgs(Unit const*, ...);                               \
    template void StringBase<S, Unit>::VPrintf(Unit const*, va_list);                              \
    template S StringBase<S, Unit>::Printable() const;                                             \
    template void StringBase<S, Unit>::ResolveEsc();                                               \
    template bool StringBase<S, Unit>::ReadRecord(RecordRead, void*);                              \
    template bool StringBase<S, Unit>::WriteRecord(RecordWrite, void*) const;                      \
    template bool StringBase<S, Unit>::FRead(std::FILE*);                                          \
    template bool StringBase<S, Unit>::FWrite(std::FILE*) const;                                   \
    template bool StringBase<S, Unit>::ReadLn(std::FILE*);

QV_STRING_FORMATS(BString, char)
QV_STRING_FORMATS(WString, char16_t)
