// Conversion between 16-bit text and the ANSI code page (WideCharToMultiByte and
// MultiByteToWideChar with CP_ACP and flags 0), and between 16-bit text and UTF-8.
// No conversion ever reports an error: what the code page lacks becomes what Windows makes of
// it, and invalid UTF-8 or lone surrogates become U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::platform {

// Windows' calling convention: a source length of -1 means "up to and including the
// terminator"; a destination size of 0 asks for the size needed. Returns the units written
// (or needed), 0 when the destination is too small or the arguments are invalid.
int WideCharToMultiByte(char16_t const* src, int srcLength, char* dst, int dstSize);
int MultiByteToWideChar(char const* src, int srcLength, char16_t* dst, int dstSize);

// Chooses the ANSI code page by ICU converter name ("windows-1252", the default; "UTF-8";
// "windows-1250" ...). False when ICU has no such converter; the previous one stays. Set it at
// start-up, before threads convert.
bool SetAnsiCodePage(char const* icuConverterName);

std::string Utf16ToUtf8(std::u16string_view text);
std::u16string Utf8ToUtf16(std::string_view text);

} // namespace qv::platform
