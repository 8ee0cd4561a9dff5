#include <qv/platform/WideStream.h>

namespace qv::platform {

int fgetwc16(std::FILE* stream) {
    int lo = std::fgetc(stream);
    if (lo == EOF)
        return kWEOF;
    int hi = std::fgetc(stream);
    if (hi == EOF)
        return kWEOF;
    return lo | (hi << 8);
}

char16_t* fgetws16(char16_t* buffer, int count, std::FILE* stream) {
    if (!buffer || count <= 0 || !stream)
        return nullptr;
    int n = 0;
    while (n < count - 1) {
        int c = fgetwc16(stream);
        if (c == kWEOF)
            break;
        buffer[n++] = static_cast<char16_t>(c);
        if (c == u'\n')
            break;
    }
    buffer[n] = 0;
    return n ? buffer : nullptr;
}

int fputwc16(char16_t c, std::FILE* stream) {
    unsigned char bytes[2] = {static_cast<unsigned char>(c), static_cast<unsigned char>(c >> 8)};
    return std::fwrite(bytes, 1, 2, stream) == 2 ? c : kWEOF;
}

int fputws16(char16_t const* text, std::FILE* stream) {
    for (; *text; ++text)
        if (fputwc16(*text, stream) == kWEOF)
            return -1;
    return 0;
}

} // namespace qv::platform
