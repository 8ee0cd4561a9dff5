// Directory listing, file queries and directory services of kernel32 and the shell, over POSIX:
// FindFirstFileW with Windows' wildcards, CreateFileW-style handles for the size and kind of a
// file, deletion, directory creation and removal, existence and short names. Paths take both
// separators (PathText.h). docs/paths.md tells the decisions.
#pragma once

#include <cstdint>
#include <qv/platform/PathText.h>
#include <qv/platform/SystemError.h>

namespace qv::platform {

using HANDLE = void*;
inline HANDLE const INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(~std::uintptr_t{0});

// The attribute word.
constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 0x2;
constexpr std::uint32_t FILE_ATTRIBUTE_SYSTEM = 0x4;
constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr std::uint32_t FILE_ATTRIBUTE_OFFLINE = 0x1000;

// CreateFileW's arguments as far as this layer offers them: opening existing files and, with
// FILE_FLAG_BACKUP_SEMANTICS, directories; reading or no access at all. Sharing is not
// enforced on POSIX.
constexpr std::uint32_t GENERIC_READ = 0x80000000;
constexpr std::uint32_t FILE_SHARE_READ = 0x1;
constexpr std::uint32_t FILE_SHARE_WRITE = 0x2;
constexpr std::uint32_t OPEN_EXISTING = 3;
constexpr std::uint32_t FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;

struct WIN32_FIND_DATAW {
    std::uint32_t dwFileAttributes;
    std::uint32_t nFileSizeHigh;
    std::uint32_t nFileSizeLow;
    char16_t cFileName[MAX_PATH];
    char16_t cAlternateFileName[14]; // no short names here: always empty
};

struct BY_HANDLE_FILE_INFORMATION {
    std::uint32_t dwFileAttributes;
    std::uint32_t nFileSizeHigh;
    std::uint32_t nFileSizeLow;
    std::uint32_t nNumberOfLinks;
};

// The attribute word of a file: read-only when its owner may not write it, directory, hidden for
// names that start with a dot, normal when none of these applies.
std::uint32_t AttributesOf(char16_t const* path);

// The entries of the pattern's directory whose names match its last component, as Windows
// matches: '*' any run, '?' one character, case-blind; "x.*" also matches "x" (so "*.*" matches
// every name) and "x." matches names without a dot. "." and ".." are entries, as on Windows.
// INVALID_HANDLE_VALUE when nothing matches or the directory can't be read.
HANDLE FindFirstFileW(char16_t const* pattern, WIN32_FIND_DATAW* data);
bool FindNextFileW(HANDLE find, WIN32_FIND_DATAW* data);
bool FindClose(HANDLE find);
// The name matching of FindFirstFileW.
bool MatchesWildcard(char16_t const* name, char16_t const* pattern);

HANDLE CreateFileW(char16_t const* path, std::uint32_t access, std::uint32_t shareMode,
                   void* security, std::uint32_t disposition, std::uint32_t flags,
                   HANDLE templateFile);
bool GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* info);
bool GetFileSizeEx(HANDLE file, long long* size);
bool CloseHandle(HANDLE file);

// Deletes a file; a read-only file stays, as Windows refuses it.
bool DeleteFileW(char16_t const* path);
// Creates the directory and its missing parents. ERROR_SUCCESS, ERROR_ALREADY_EXISTS when the
// directory is there, ERROR_FILE_EXISTS when a file is, ERROR_BAD_PATHNAME for an empty path,
// ERROR_PATH_NOT_FOUND or ERROR_ACCESS_DENIED otherwise.
int SHCreateDirectoryExW(void* window, char16_t const* path, void const* security);
bool RemoveDirectoryW(char16_t const* path);
bool PathFileExistsW(char16_t const* path);
// The path names a directory without entries.
bool PathIsDirectoryEmptyW(char16_t const* path);
// POSIX has no short names: the path itself. Returns its length, 0 when it does not exist, or
// the size needed (terminator included) when the buffer is too small.
std::uint32_t GetShortPathNameW(char16_t const* longPath, char16_t* shortPath,
                                std::uint32_t bufferLength);

} // namespace qv::platform
