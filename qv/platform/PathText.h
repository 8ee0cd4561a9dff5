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

// The file name as the POSIX services take it: UTF-8, each '\' read as '/', so that a name
// written on Windows ("sub\cam1.ini") finds the same file here.
std::string NativePath(std::u16string_view path);

} // namespace qv::platform
