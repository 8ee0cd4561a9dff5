/// \file
/// BArchiveInspector: a read-only look at an archive file, for tools and diagnostics. For an
/// object archive it walks the header and the record prefixes the way the archive's own
/// opening scan does, but loads no object: it lists every record it can reach and names the
/// first damage it meets, with its file position and the reason. For a stream archive, whose
/// objects cannot be skipped, it reads the header only.
/// Opening a BQuorvelArchive gives only good or not good; this class says why.
#pragma once

#include <cstdio>
#include <functional>
#include <qv/core/Export.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <vector>

class QV_EXPORT BArchiveInspector {
public:
    /// The prefix of one record, as the file holds it.
    struct Record {
        BString id;               ///< lower-case hexadecimal index; "1" for the first object
        BString name;             ///< empty for an object inserted without a name
        BString className;        ///< "class " added in front where an older writer left it out
        int version = 0;          ///< the object's version
        long long offset = 0;     ///< file position of the record
        long long dataOffset = 0; ///< file position of the object data
        long long size = 0;       ///< bytes of object data
    };

    /// Told the bytes walked so far and the file's size, now and then during a walk.
    using Progress = std::function<void(long long done, long long total)>;

    /// Reads the file at \p path at once; the object holds no file afterwards. \p progress,
    /// where given, hears of the walk about every megabyte.
    explicit BArchiveInspector(char16_t const* path, Progress const& progress = {});

    /// True when the file begins with an object or stream archive header of a known format.
    bool IsArchive() const { return m_isArchive; }
    /// True for a stream archive (records are then not listed).
    bool IsStream() const { return m_isStream; }
    /// True when the header and every record are whole; then Damage() is empty.
    bool IsSound() const { return m_isArchive && m_damage.IsEmpty(); }

    /// The archive name of the header ("class " added as the reader adds it); a stream
    /// archive's name in the ANSI code page (StreamName() has it whole).
    BString const& Name() const { return m_name; }
    WString const& StreamName() const { return m_streamName; }
    int ApplicationVersion() const { return m_applicationVersion; }
    /// 2 to 8; 0 when the header could not be read.
    int FormatVersion() const { return m_formatVersion; }

    /// The records up to the first damaged one, in file order.
    std::vector<Record> const& Records() const { return m_records; }

    /// Why the file is not sound, in English, or empty when it is.
    WString const& Damage() const { return m_damage; }
    /// File position where the damage was found; -1 when sound.
    long long DamageOffset() const { return m_damageOffset; }
    long long FileSize() const { return m_fileSize; }

private:
    void Inspect(char16_t const* path, Progress const& progress);
    bool InspectStreamHeader(std::FILE* file);

    BString m_name;
    WString m_streamName;
    bool m_isStream = false;
    int m_applicationVersion = 0;
    int m_formatVersion = 0;
    bool m_isArchive = false;
    std::vector<Record> m_records;
    WString m_damage;
    long long m_damageOffset = -1;
    long long m_fileSize = 0;
};
