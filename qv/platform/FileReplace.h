// Whole-file stores that several threads and processes share (the registry store files, ini
// files): a lock that holds across both, a stamp that tells whether the file changed since it
// was read, and a replacement that is on disk, whole, before the call returns. A reader sees
// the old file or the new one, never a torn one, also when the writer is killed half-way.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace qv::platform {

/// Modification time and size: what tells a cached parse that the file changed under it.
struct FileStamp {
    long long modifiedNs = -1; ///< -1: the file does not exist
    long long size = -1;
    bool operator==(FileStamp const&) const = default;
};

FileStamp StampOf(std::string const& nativePath);

/// The lock file of a file: ".<name>.lock" beside it, never removed (removing it would let
/// two writers hold locks on two different files).
std::string LockPathOf(std::string const& nativePath);

/// Holds the lock of one file for other threads and other processes alike: an advisory flock
/// on the file's lock file, taken through a descriptor of its own, so threads of one process
/// exclude each other as processes do. Held() is false where the lock file cannot be made (a
/// directory that cannot be written, where the file cannot be replaced anyway).
class FileLock {
public:
    explicit FileLock(std::string const& nativePath);
    ~FileLock();
    FileLock(FileLock const&) = delete;
    FileLock& operator=(FileLock const&) = delete;

    bool Held() const { return m_fd >= 0; }

private:
    int m_fd = -1;
};

/// True when the file may be replaced: its directory exists and can be written, and the file,
/// if there is one, can be written too.
bool CanReplaceFile(std::string const& nativePath);

/// Writes bytes to a hidden temporary file beside the target, flushes it to the disk and
/// renames it over the target, then flushes the directory. The new file gets \p mode, or by
/// default the old file's permissions (0644 for a new one). False, and the target as it was,
/// on any failure. Call it under the file's FileLock.
bool ReplaceFile(std::string const& nativePath, std::string_view bytes, int mode = -1);

/// The whole file, or false when it cannot be read.
bool ReadWholeFile(std::string const& nativePath, std::string& bytes);

} // namespace qv::platform

namespace qv::platform {

/// The bytes that \p write puts into a stdio stream, collected in memory: for formats whose
/// writers take a FILE * and whose files are then replaced whole.
template <class Write>
std::string WrittenBytes(Write write);

/// A stdio stream that writes into memory (open_memstream). Null on failure.
std::FILE* OpenMemoryStream(char** buffer, std::size_t* size);

template <class Write>
std::string WrittenBytes(Write write) {
    char* buffer = nullptr;
    std::size_t size = 0;
    std::FILE* stream = OpenMemoryStream(&buffer, &size);
    if (!stream)
        return {};
    write(stream);
    std::fclose(stream);
    std::string bytes(buffer, size);
    std::free(buffer);
    return bytes;
}

} // namespace qv::platform
