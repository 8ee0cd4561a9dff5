// BDirEntry: one path as a value, with the operations that take it apart and put it together
// and a few that touch the directory tree. Nothing normalises the path on construction. Both
// '/' and '\' are read as separators; the separator this class writes is '/'.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

class QV_EXPORT BDirEntry {
public:
    BDirEntry() = default;
    BDirEntry(WString path) : m_path(std::move(path)) {}

    WString GetFull() const { return m_path; }
    // A copy without its last component; the full path when there is none to remove.
    BDirEntry GetPath() const;
    // False for a path of MAX_PATH units or more, or when nothing could be removed.
    bool RemoveFileSpec();
    // The last component, extension included.
    WString GetName() const;
    // The last component without its extension; empty for a path over MAX_PATH units.
    WString GetBase() const;
    // The text behind the extension's dot; empty without an extension.
    WString GetExtension() const;
    // GetExtension, and the path is cut before the extension's dot.
    WString CutExtension();
    // ext without dot replaces the extension's text, or is appended with a dot.
    void ChangeExtension(WString const& ext);
    // The last component becomes name. A path without directory gives a separator and name,
    // as on Windows.
    void ChangeName(WString name);
    // The canonical combined path; an absolute right side replaces this path. When the combined
    // path would be too long, the right side is appended behind a separator as it is.
    BDirEntry& operator+=(BDirEntry const& other);

    bool Exists() const;
    // The path names a directory without entries.
    bool IsEmpty() const;
    // Creates the directory with its parents; false when it already exists.
    bool MakeDir() const;
    bool RemoveDir() const;

private:
    WString m_path;
};
