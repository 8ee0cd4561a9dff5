/// \file
/// String resources of modules: what LoadStringW and GetModuleHandleW give the Windows library.
/// A module here is a numbered string table. The library's own module holds the rows the
/// library itself raises, returns or reads, compiled in; the host program's module starts
/// empty. The application brings the rest of its rows from a text file, one row per line (id,
/// tab, text), into either module. docs/language-files.md tells the decisions.
#pragma once

#include <qv/core/Export.h>

/// A module handle under the names Windows gives it. Null stands for the host program.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;

namespace qv::platform {

/// The host program's module for null, this library's module for its name "qvcore" (any case,
/// with or without ".dll" or ".so"), null for any other name.
QV_EXPORT HMODULE GetModuleHandleW(char16_t const* moduleName);
/// This library's module, the one its string-table rows live in.
QV_EXPORT HMODULE LibraryModule();

/// The row id of module's string table (null: the host program's). With bufferMax 0, buffer
/// really is a char16_t const ** that receives a pointer to the stored text, which is not
/// terminated and stays valid as long as the process; the result is its length. With a
/// positive bufferMax at most bufferMax - 1 units are copied and terminated, and the result is
/// their count. 0 for an id without text (ids are 16 bits wide) or a bad argument. Safe on any
/// thread, also while rows are loaded.
QV_EXPORT int LoadStringW(HMODULE module, unsigned int id, char16_t* buffer, int bufferMax);

/// Adds the rows of a text file to module's table (null: the host program's): one row per line,
/// a decimal id from 0 to 65535, a tab, and the text up to the end of the line, taken as it
/// stands. A row replaces a row of the same id, compiled-in ones included. Lines of another
/// form are passed over. The file is UTF-8, or UTF-16LE or UTF-8 after a byte order mark.
/// The number of rows taken, or -1 when the file can't be opened.
QV_EXPORT int LoadStringTable(HMODULE module, char16_t const* path);

} // namespace qv::platform
