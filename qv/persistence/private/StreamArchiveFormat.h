// The fixed parts of a stream archive file, shared by its writer and its reader.
#pragma once

#include <cstdint>
#include <qv/platform/WindowsTypes.h>

namespace qv::detail {

// The header begins with this number, then the identifier in memory order, the format's name
// as a wide string, the format version and the archive's name.
inline constexpr unsigned long long kStreamHeaderNumber = 16;
inline constexpr _GUID kStreamArchiveId = {
    0x18B89F7A, 0x86D3, 0x44F8, {0xA3, 0x85, 0x4F, 0xE4, 0x83, 0x31, 0xC3, 0x62}};
inline constexpr char16_t kStreamArchiveName[] = u"BStreamArchive";
inline constexpr int kStreamFormatVersion = 9;

// Objects stand inside the objects that refer to them, so writing and reading recurse once
// per level of the structure. Deeper than this, the archive raises its error instead of
// running out of stack: a hostile stream cannot crash the reader, and a structure this deep
// is no measurement tree.
inline constexpr int kStreamMaxDepth = 2000;

// Counts one level of objects being written or read, one inside the other, for its scope.
struct StreamLevel {
    explicit StreamLevel(int& depth) : m_depth(++depth) {}
    ~StreamLevel() { --m_depth; }
    StreamLevel(StreamLevel const&) = delete;
    StreamLevel& operator=(StreamLevel const&) = delete;
    int& m_depth;
};

// Bytes gathered or read ahead between two calls to the stream.
inline constexpr std::size_t kStreamChunk = 64 * 1024;

} // namespace qv::detail
