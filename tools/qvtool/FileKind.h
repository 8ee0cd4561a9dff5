// Tells the kind of a file from its first bytes, never from its name: service engineers get
// files renamed, mailed and unpacked, and a name says little after that.
#pragma once

#include <string>

namespace qvtool {

enum class FileKind {
    ObjectArchive,
    StreamArchive,
    BinaryProfileAnsi,
    BinaryProfileUnicode,
    RegistryFile,
    LanguageFile,
    ProfilerLog,
    IniProfile,
    Unknown,
};

/// The kind of the file at \p path; Unknown also for a file that cannot be read.
FileKind Recognise(std::string const& path);

/// The first few kilobytes of a text file as UTF-8, whatever its encoding.
std::string HeadTextOf(std::string const& path);

/// A short English name ("object archive").
char const* KindName(FileKind kind);

} // namespace qvtool
