// libuuid makes the identifiers; the conversion between its byte array (RFC 4122 order, the
// numbers big-endian) and the record's fields, and the text forms, are done here.
#include <cstring>
#include <new>
#include <qv/platform/Uuid.h>
#include <qv/platform/WideNumbers.h>
#include <uuid/uuid.h>

namespace qv::platform {

namespace {

constexpr char16_t kDigits[] = u"0123456789abcdef";
// Where each of the 16 bytes of the RFC order starts in the text.
constexpr int kTextPos[16] = {0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
constexpr int kTextLength = 36;

// The record's bytes in RFC order: the three numbers big-endian, then Data4.
void ToBytes(_GUID const& g, unsigned char (&bytes)[16]) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(g.Data1 >> (24 - 8 * i));
    bytes[4] = static_cast<unsigned char>(g.Data2 >> 8);
    bytes[5] = static_cast<unsigned char>(g.Data2);
    bytes[6] = static_cast<unsigned char>(g.Data3 >> 8);
    bytes[7] = static_cast<unsigned char>(g.Data3);
    std::memcpy(bytes + 8, g.Data4, 8);
}

_GUID FromBytes(unsigned char const (&bytes)[16]) {
    _GUID g{};
    for (int i = 0; i < 4; ++i)
        g.Data1 = g.Data1 << 8 | bytes[i];
    g.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    g.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(g.Data4, bytes + 8, 8);
    return g;
}

} // namespace

RPC_STATUS UuidCreate(_GUID* uuid) {
    uuid_t bytes;
    uuid_generate_random(bytes);
    *uuid = FromBytes(bytes);
    return RPC_S_OK;
}

RPC_STATUS UuidToStringW(_GUID const* uuid, char16_t** text) {
    unsigned char bytes[16];
    ToBytes(*uuid, bytes);
    auto* out = new (std::nothrow) char16_t[kTextLength + 1];
    if (!out)
        return RPC_S_OUT_OF_MEMORY;
    for (int i = 0; i < kTextLength; ++i)
        out[i] = u'-';
    for (int i = 0; i < 16; ++i) {
        out[kTextPos[i]] = kDigits[bytes[i] >> 4];
        out[kTextPos[i] + 1] = kDigits[bytes[i] & 0xF];
    }
    out[kTextLength] = 0;
    *text = out;
    return RPC_S_OK;
}

RPC_STATUS RpcStringFreeW(char16_t** text) {
    delete[] * text;
    *text = nullptr;
    return RPC_S_OK;
}

RPC_STATUS UuidFromStringW(char16_t const* text, _GUID* uuid) {
    if (!text) {
        *uuid = _GUID{};
        return RPC_S_OK;
    }
    unsigned char bytes[16];
    int next = 0;
    for (int i = 0; i < kTextLength; ++i) {
        if (!text[i])
            return RPC_S_INVALID_STRING_UUID;
        bool const hyphen = i == 8 || i == 13 || i == 18 || i == 23;
        if (hyphen != (text[i] == u'-'))
            return RPC_S_INVALID_STRING_UUID;
    }
    if (text[kTextLength] != 0)
        return RPC_S_INVALID_STRING_UUID;
    for (int pos : kTextPos) {
        int const high = HexDigitValue(text[pos]);
        int const low = HexDigitValue(text[pos + 1]);
        if (high < 0 || low < 0)
            return RPC_S_INVALID_STRING_UUID;
        bytes[next++] = static_cast<unsigned char>(high << 4 | low);
    }
    *uuid = FromBytes(bytes);
    return RPC_S_OK;
}

int UuidEqual(_GUID const* a, _GUID const* b, RPC_STATUS* status) {
    static constexpr _GUID kNil{};
    *status = RPC_S_OK;
    return std::memcmp(a ? a : &kNil, b ? b : &kNil, sizeof(_GUID)) == 0;
}

} // namespace qv::platform
