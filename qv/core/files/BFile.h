/// \file
/// BFile: one open buffered stream that closes itself, and static queries on files by name.
/// Modes are the C runtime's ("rb", "wt,ccs=UNICODE", "r,ccs=UTF-16LE" ...); the stream is a
/// real FILE * whose text modes read and write what Windows' runtime does (docs/file-streams.md).
/// Paths take '/' and '\' alike (docs/paths.md).
#pragma once

#include <cstdio>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <utility>

/// Closed or open; the usual way to hold a stream is a BFile on the stack, so that every early
/// return closes it. Not copyable. No operation throws or raises a BError: members answer
/// false, queries false or -1, conversions a code. A BFile belongs to the thread that uses
/// it; the static queries may run on any thread.
class QV_EXPORT BFile {
public:
    /// @name Result codes, each the id of a string-table row holding its key.
    ///@{
    static constexpr int kFileError = 31825;        // "$ERR_FILE_ERROR"
    static constexpr int kShortPathNameExt = 32987; // "$ERR_SHORT_PATHNAME_EXT"
    ///@}

    /// Closed.
    BFile() = default;
    /// Opens like Open when both arguments are non-null; a failure leaves the object closed
    /// and is not reported (the stream operator gives null).
    BFile(char16_t const* path, char16_t const* mode);
    /// Closes an open stream.
    virtual ~BFile();

    /// Opens \p path with the runtime's \p mode. False, changing nothing, when already open
    /// or for a null argument; false when the stream does not open.
    bool Open(char16_t const* path, char16_t const* mode);
    /// The same, letting other openers read and write the file meanwhile.
    bool OpenShared(char16_t const* path, char16_t const* mode);
    /// Closes an open stream; nothing when closed.
    void Close();
    /// Back to the start of the stream; false when closed.
    bool Rewind();
    /// The stream, borrowed (the BFile closes it), null when closed.
    operator std::FILE*() const { return m_stream; }

    /// @name Queries by name. A null path answers false, -1 or kFileError.
    ///@{
    /// A match of the path (wildcards match, so "*.ini" exists when one file does), or a
    /// directory not written with a trailing separator; false for an empty path.
    static bool Exist(char16_t const* path);
    /// The path names a directory; false on any failure.
    static bool IsDirectory(char16_t const* path);
    /// Bytes in the file; -1 when it can't be opened for reading (a directory can't).
    static long long Size(char16_t const* path);
    /// The file starts with a UTF-16 (either order) or UTF-8 byte order mark; false for a file
    /// shorter than its mark or one that does not open.
    static bool IsUnicode(char16_t const* path);
    /// Rewrites an ANSI text file as UTF-16LE text with byte order mark, converting by the
    /// ANSI code page; a zero byte cuts the text of its 1024-byte block. 0, also for a file
    /// that already is Unicode, which stays untouched; kFileError when it can't be read or
    /// reopened for writing.
    static int ConvertToUnicode(char16_t const* path);
    /// Deletes the files of one directory that match the pattern \p spec, skipping read-only,
    /// system, offline files and directories; a failed deletion is skipped too. Not recursive. The
    /// number deleted; 0 for an empty pattern, -1 when nothing matches.
    static int Delete(WString spec);
    /// The short form of the path (here the path itself) and 0, or kShortPathNameExt with an
    /// empty path for a path that does not exist, or with the path when it contains a blank.
    static std::pair<WString, int> GetShortPathNameW(WString path);
    ///@}

private:
    BFile(BFile const&) = delete;
    BFile& operator=(BFile const&) = delete;

    std::FILE* m_stream = nullptr;
};
