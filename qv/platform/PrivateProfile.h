/// \file
/// The private-profile service of kernel32 on ini files: reading and writing values, key and
/// section lists, whole sections, numbers and checksummed blocks, on files in the ANSI code
/// page, in UTF-16LE (byte order mark FF FE) or in UTF-8 with a byte order mark. Names compare
/// without regard to case (every letter, not only ASCII), blanks around names and values don't
/// count, and a value in matching quotes reads without them. A write changes only the lines it
/// concerns and reaches the disk before the call returns, through a temporary file and a
/// rename, under a lock that holds across threads and processes; a read is a lookup in a parsed
/// copy that is checked against the file's identity, so it sees another process's writes.
/// docs/profiles.md tells the rules and the decisions.
///
/// Threads: every function may be called from any thread at any time.
#pragma once

#include <cstdint>

namespace qv::platform {

/// With a key: the key's value (quotes removed) or else defaultValue (null is empty, trailing
/// blanks dropped) into buffer, cut to size - 1 characters and terminated; returns the
/// characters copied. With a null key: the section's key names, each terminated, and one more
/// terminator; returns the characters without that last one, size - 2 when cut. With a null
/// section: as GetPrivateProfileSectionNamesW. A missing file reads as an empty one.
std::uint32_t GetPrivateProfileStringW(char16_t const* section, char16_t const* key,
                                                 char16_t const* defaultValue, char16_t* buffer,
                                                 std::uint32_t size, char16_t const* path);
/// The names of all sections in file order, as the list form above; only whole names are
/// copied, and a cut list gives size - 2.
std::uint32_t GetPrivateProfileSectionNamesW(char16_t* buffer, std::uint32_t size,
                                                       char16_t const* path);
/// The section's lines as "key=value" (quotes kept; comment lines left out), each terminated,
/// with one more terminator; 0 for a missing or empty section, size - 2 when cut.
std::uint32_t GetPrivateProfileSectionW(char16_t const* section, char16_t* buffer,
                                                  std::uint32_t size, char16_t const* path);
/// The key's value as a number: optional sign, decimal digits or "0x" and hexadecimal digits,
/// wrapping at 32 bits; 0 for a text that holds none; defaultValue for a missing key or an
/// empty value.
std::uint32_t GetPrivateProfileIntW(char16_t const* section, char16_t const* key,
                                              int defaultValue, char16_t const* path);
/// Stores value under key, creating file, section and key as needed (a new file is ANSI). A
/// null value removes the key, a null key removes the section. False when the file cannot be
/// written; it then stays as it was.
bool WritePrivateProfileStringW(char16_t const* section, char16_t const* key,
                                          char16_t const* value, char16_t const* path);
/// Replaces the section's lines by content, a list of terminated lines ending with an empty
/// one; null content removes the section.
bool WritePrivateProfileSectionW(char16_t const* section, char16_t const* content,
                                           char16_t const* path);
/// Stores size bytes as upper-case hexadecimal followed by a checksum byte, their sum modulo
/// 256.
bool WritePrivateProfileStructW(char16_t const* section, char16_t const* key,
                                          void const* data, std::uint32_t size,
                                          char16_t const* path);
/// Fills data from a value so stored. False, with data untouched, when the key is missing, its
/// text is not 2 * size + 2 hexadecimal digits or the checksum differs.
bool GetPrivateProfileStructW(char16_t const* section, char16_t const* key, void* data,
                                        std::uint32_t size, char16_t const* path);
/// Makes the file an empty UTF-16LE file (just the byte order mark), under the lock of the
/// writes: always with replaceExisting, otherwise only when there is no file yet. False when
/// it cannot be written.
bool CreateUnicodePrivateProfile(char16_t const* path, bool replaceExisting);
/// Rewrites an ANSI or UTF-8 file as UTF-16LE with a byte order mark, line feeds as CR LF, under
/// the lock of the writes. True also for a file that is UTF-16 already or does not exist.
bool ConvertPrivateProfileToUnicode(char16_t const* path);

} // namespace qv::platform
