// The platform's identifier services (UuidCreate and its family) over libuuid, with the
// Windows layout and text forms: the text is 36 characters, groups of 8, 4, 4, 4 and 12
// hexadecimal digits, Data1, Data2 and Data3 as numbers and Data4 byte by byte, so that
// "00112233-4455-6677-8899-aabbccddeeff" is Data1 0x00112233 whatever the byte order.
#pragma once

#include <qv/platform/WindowsTypes.h>

namespace qv::platform {

using RPC_STATUS = long;
constexpr RPC_STATUS RPC_S_OK = 0;
constexpr RPC_STATUS RPC_S_OUT_OF_MEMORY = 14;
constexpr RPC_STATUS RPC_S_INVALID_STRING_UUID = 1705;
constexpr RPC_STATUS RPC_S_UUID_NO_ADDRESS = 1739;

// A new random identifier (version 4 of RFC 4122).
RPC_STATUS UuidCreate(_GUID* uuid);
// The text form, lower-case, in a buffer that RpcStringFreeW gives back.
RPC_STATUS UuidToStringW(_GUID const* uuid, char16_t** text);
RPC_STATUS RpcStringFreeW(char16_t** text);
// Parses the text form, either case. A null text gives the all-zero identifier and RPC_S_OK;
// text that is not exactly the form gives RPC_S_INVALID_STRING_UUID and leaves uuid as it was.
RPC_STATUS UuidFromStringW(char16_t const* text, _GUID* uuid);
// True when the 128 bits are equal; null counts as the all-zero identifier. status gets
// RPC_S_OK.
int UuidEqual(_GUID const* a, _GUID const* b, RPC_STATUS* status);

} // namespace qv::platform
