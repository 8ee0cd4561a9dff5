// BFile: one open buffered stream that closes itself, and static queries on files by name.
// Modes are the C runtime's ("rb", "wt,ccs=UNICODE", "r,ccs=UTF-16LE" ...); the stream is a
// real FILE * whose text modes read and write what Windows' runtime does (docs/file-streams.md).
#pragma once

#include <cstdio>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <utility>

class QV_EXPORT BFile {
public:
    static constexpr int kFileError = 31825;        // "$ERR_FILE_ERROR"
    static constexpr int kShortPathNameExt = 32987; // "$ERR_SHORT_PATHNAME_EXT"

    BFile() = default;
    // Opens like Open; a failure leaves the object closed and is not reported.
    BFile(char16_t const* path, char16_t const* mode);
    virtual ~BFile();

    // False when already open, for a null argument, or when the stream does not open.
    bool Open(char16_t const* path, char16_t const* mode);
    // The same with sharing for other readers and writers.
    bool OpenShared(char16_t const* path, char16_t const* mode);
    void Close();
    // False when closed.
    bool Rewind();
    // The stream, null when closed.
    operator std::FILE*() const { return m_stream; }

    // A match of the path (wildcards match), or a directory not written with a trailing
    // separator.
    static bool Exist(char16_t const* path);
    static bool IsDirectory(char16_t const* path);
    // Bytes in the file; -1 when it can't be opened for reading (a directory can't).
    static long long Size(char16_t const* path);
    // The file starts with a UTF-16 or UTF-8 byte order mark.
    static bool IsUnicode(char16_t const* path);
    // Rewrites an ANSI text file as UTF-16LE text with byte order mark. 0, also for a file that
    // already is Unicode, which stays untouched; kFileError when it can't be read or written.
    static int ConvertToUnicode(char16_t const* path);
    // Deletes the files of one directory that match spec, skipping read-only, system, offline
    // files and directories. The number deleted; 0 for an empty spec, -1 when nothing matches.
    static int Delete(WString spec);
    // The short form of the path (here the path itself) and 0, or kShortPathNameExt with an
    // empty path for a path that does not exist, or with the path when it contains a blank.
    static std::pair<WString, int> GetShortPathNameW(WString path);

private:
    BFile(BFile const&) = delete;
    BFile& operator=(BFile const&) = delete;

    std::FILE* m_stream = nullptr;
};
