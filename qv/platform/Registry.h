// The registry of Windows as the configuration trees use it, over our own store: keys and typed
// values under the five roots, each root kept in a Windows registry export file
// ("HKEY_CURRENT_USER.reg" ...) in one directory, in the "Windows Registry Editor Version
// 5.00" form that regedit writes (UTF-16LE with byte order mark, CR LF), so that settings
// exported on Windows load here and the other way round. Every write is on disk when the call
// returns; a store file that cannot be written refuses write access. docs/registry.md tells
// the format and the decisions.
#pragma once

#include <cstdint>
#include <qv/platform/SystemError.h>
#include <string>
#include <string_view>

namespace qv::platform {

struct HKEY__;
using HKEY = HKEY__*;

// The predefined root keys, with the values Windows gives them.
inline HKEY const HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});
inline HKEY const HKEY_USERS = reinterpret_cast<HKEY>(std::uintptr_t{0x80000003});
inline HKEY const HKEY_CURRENT_CONFIG = reinterpret_cast<HKEY>(std::uintptr_t{0x80000005});

constexpr std::uint32_t REG_NONE = 0;
constexpr std::uint32_t REG_SZ = 1;
constexpr std::uint32_t REG_EXPAND_SZ = 2;
constexpr std::uint32_t REG_BINARY = 3;
constexpr std::uint32_t REG_DWORD = 4;
constexpr std::uint32_t REG_MULTI_SZ = 7;
constexpr std::uint32_t REG_QWORD = 11;

constexpr std::uint32_t KEY_QUERY_VALUE = 0x1;
constexpr std::uint32_t KEY_SET_VALUE = 0x2;
constexpr std::uint32_t KEY_CREATE_SUB_KEY = 0x4;
constexpr std::uint32_t KEY_READ = 0x20019;
constexpr std::uint32_t KEY_ALL_ACCESS_RW = 0x2001f; // read and write, as callers ask for it

constexpr std::uint32_t REG_CREATED_NEW_KEY = 1;
constexpr std::uint32_t REG_OPENED_EXISTING_KEY = 2;

/// Opens or creates a key below \p key (subKey may hold several names parted by '\'); an
/// empty subKey opens \p key again. Write access (KEY_SET_VALUE or KEY_CREATE_SUB_KEY) is
/// refused with ERROR_ACCESS_DENIED when the root's store file cannot be written; read access
/// opens existing keys only and then refuses creation the same way.
long RegCreateKeyExW(HKEY key, char16_t const* subKey, std::uint32_t reserved, char16_t* keyClass,
                     std::uint32_t options, std::uint32_t access, void const* security,
                     HKEY* result, std::uint32_t* disposition);
/// Opens an existing key; ERROR_FILE_NOT_FOUND when it is not there.
long RegOpenKeyExW(HKEY key, char16_t const* subKey, std::uint32_t options, std::uint32_t access,
                   HKEY* result);
/// Closes an opened key; a predefined root is left alone.
long RegCloseKey(HKEY key);
/// Counts and longest lengths (names in characters without the terminator, data in bytes).
/// Any pointer may be null.
long RegQueryInfoKeyW(HKEY key, char16_t* keyClass, std::uint32_t* classLength,
                      std::uint32_t* reserved, std::uint32_t* subKeys,
                      std::uint32_t* maxSubKeyLength, std::uint32_t* maxClassLength,
                      std::uint32_t* values, std::uint32_t* maxValueNameLength,
                      std::uint32_t* maxValueLength, std::uint32_t* securityDescriptor,
                      void* lastWriteTime);
/// Value \p index in creation order. \p nameLength holds the buffer's size in characters on the
/// way in and the name's length on the way out; ERROR_MORE_DATA when the name or the data does
/// not fit, ERROR_NO_MORE_ITEMS past the last.
long RegEnumValueW(HKEY key, std::uint32_t index, char16_t* name, std::uint32_t* nameLength,
                   std::uint32_t* reserved, std::uint32_t* type, unsigned char* data,
                   std::uint32_t* dataLength);
/// Subkey \p index in the order Windows lists them (names compared in upper case).
long RegEnumKeyExW(HKEY key, std::uint32_t index, char16_t* name, std::uint32_t* nameLength,
                   std::uint32_t* reserved, char16_t* keyClass, std::uint32_t* classLength,
                   void* lastWriteTime);
/// Type and data of a value (null or empty name: the default value). With null data only the
/// size is given; ERROR_MORE_DATA with the size needed when the buffer is too small.
long RegQueryValueExW(HKEY key, char16_t const* name, std::uint32_t* reserved, std::uint32_t* type,
                      unsigned char* data, std::uint32_t* dataLength);
/// Sets a value; on disk when the call returns.
long RegSetValueExW(HKEY key, char16_t const* name, std::uint32_t reserved, std::uint32_t type,
                    unsigned char const* data, std::uint32_t dataLength);

/// The directory of the store files. Empty (the default) means "~/.config/qvcore/registry" of
/// the user the process runs as. Keys opened before a change keep working on the new store.
void SetRegistryDirectory(std::u16string_view directory);
std::u16string RegistryDirectory();

/// The export text of one file, parsed into calls of \p sink and printed again: for the store
/// itself, for tools and for the fuzzer. Parse returns false when the text has no export
/// header; lines it cannot read are passed over, as regedit's import passes them over.
struct RegistryFileSink {
    virtual ~RegistryFileSink() = default;
    /// A "[path]" line ("[-path]": \p remove).
    virtual void OnKey(std::u16string_view path, bool remove) = 0;
    /// A value line below the last key; name empty for "@"; remove for "=-".
    virtual void OnValue(std::u16string_view name, std::uint32_t type, std::string_view data,
                         bool remove) = 0;
};
bool ParseRegistryFile(std::string_view bytes, RegistryFileSink& sink);

} // namespace qv::platform
