// The formats only WString has: memory images as text.
#include <qv/core/strings/WString.h>

void WString::EncodeMemory(void const* data, unsigned long long n) {
    if (!data || n == 0) {
        Clear();
        return;
    }
    auto bytes = static_cast<unsigned char const*>(data);
    Block* block = CreateShared(2 * n);
    char16_t* out = block->Text();
    for (unsigned long long i = 0; i < n; ++i) {
        *out++ = static_cast<char16_t>((bytes[i] >> 4) | 0x30);
        *out++ = static_cast<char16_t>((bytes[i] & 15) | 0x30);
    }
    block->End(2 * n);
    Reset(block);
}

bool WString::DecodeMemory(void* data, unsigned long long n) const {
    if (Length() != 2 * n)
        return false;
    if (n == 0)
        return true;
    if (!data)
        return false;
    auto bytes = static_cast<unsigned char*>(data);
    char16_t const* text = CStr();
    for (unsigned long long i = 0; i < n; ++i) {
        char16_t hi = text[2 * i], lo = text[2 * i + 1];
        if (hi < 0x30 || hi > 0x3F || lo < 0x30 || lo > 0x3F)
            return false;
        bytes[i] = static_cast<unsigned char>(hi * 16 + (lo & 15));
    }
    return true;
}
