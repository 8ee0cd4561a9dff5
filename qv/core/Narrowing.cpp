#include <cstdint>
#include <qv/core/BError.h>
#include <qv/core/Narrowing.h>

namespace {

[[noreturn]] void Overflow(char16_t const* function) {
    throw BError(BError::kGeneralFailure, function);
}

int SignedInt32(long long value, char16_t const* function) {
    if (value < INT32_MIN || value > INT32_MAX)
        Overflow(function);
    return static_cast<int>(value);
}

} // namespace

int Sizet_int(unsigned long long value) {
    if (value > INT32_MAX)
        Overflow(u"Sizet_int");
    return static_cast<int>(value);
}

unsigned int Sizet_uint(unsigned long long value) {
    if (value > UINT32_MAX)
        Overflow(u"Sizet_uint");
    return static_cast<unsigned int>(value);
}

unsigned char Sizet_byte(unsigned long long value) {
    if (value > UINT8_MAX)
        Overflow(u"Sizet_byte");
    return static_cast<unsigned char>(value);
}

int Longptr_int(long long value) {
    return SignedInt32(value, u"Longptr_int");
}

int Dwordptr_int(unsigned long long value) {
    // The same 64-bit patterns as Longptr_int: a sign-widened negative passes.
    return SignedInt32(static_cast<long long>(value), u"Dwordptr_int");
}
