// shlwapi's path text functions and the runtime's _wsplitpath_s on 16-bit paths. Both '/' and
// '\' separate components when a path is read; composed paths use '/', the separator of this
// system. A path is absolute when it starts with a separator (which includes a UNC prefix) or
// with a drive letter and a colon. docs/paths.md tells the decisions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::platform {

// The platform's path limit, terminator included.
constexpr int MAX_PATH = 260;

// The separator that composed paths get.
constexpr char16_t kPathSeparator = u'/';

constexpr bool IsPathSeparator(char16_t c) {
    return c == u'/' || c == u'\\';
}

// A leading separator, a UNC prefix or a drive letter with its colon.
bool PathIsAbsolute(std::u16string_view path);

// The file name as the POSIX services take it: UTF-8, each '\' read as '/', so that a name
// written on Windows ("sub\cam1.ini") finds the same file here; the long-path prefix "\\?\"
// is dropped.
std::string NativePath(std::u16string_view path);

// Joins dir and file into dest (MAX_PATH units) and resolves "." and ".." components; an
// absolute file stands alone. ".." stops at the root (for a UNC path, at the server) and at
// the start of a relative path, except that the ".." a relative path starts with are kept
// ("..", "b" gives "../b"). Two empty sides give "/", a bare drive "C:/". A null side counts
// as empty. Returns dest, or null (and an empty dest) when dest is null, both sides are null
// or the result has MAX_PATH units or more.
char16_t* PathCombineW(char16_t* dest, char16_t const* dir, char16_t const* file);
// The last dot of the last component, or the terminator when that component has no dot or a
// blank behind its last dot.
char16_t const* PathFindExtensionW(char16_t const* path);
// The last component; a trailing separator stays with it ("a\b\" gives "b\").
char16_t const* PathFindFileNameW(char16_t const* path);
// Removes the last component and its separator, keeping a root ("C:\", "/", "\\"); after a
// colon behind the last separator only the stream name goes ("a.txt:s" gives "a.txt:"). True
// when something was removed.
bool PathRemoveFileSpecW(char16_t* path);
// Moves the last component to the front of the buffer.
void PathStripPathW(char16_t* path);
// Splits path into drive ("C:"), directory (with its trailing separator), file name and
// extension (with its dot). A null part with size 0 is not wanted. Returns 0, EINVAL for bad
// arguments, or ERANGE when a part does not fit; on an error every given part is emptied.
int _wsplitpath_s(char16_t const* path, char16_t* drive, std::size_t driveSize, char16_t* dir,
                  std::size_t dirSize, char16_t* fname, std::size_t fnameSize, char16_t* ext,
                  std::size_t extSize);

} // namespace qv::platform
