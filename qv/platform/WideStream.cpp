#include <qv/platform/FileStream.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <utility>

namespace qv::platform {

namespace {

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
    LineRead line;
    bool ansi = false;
    while (line.taken < count - 1) {
        if (!ansi) {
            ansi = !TakeLineUnits(stream, buffer, count - 1, line);
            if (line.lineFeed || line.taken == count - 1)
                break;
        }
        int const c = NextUnlocked(stream, ansi);
        if (c == kWEOF)
            break;
        buffer[line.taken] = static_cast<char16_t>(c);
        if (line.Ends(line.taken++, static_cast<char16_t>(c)))
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
