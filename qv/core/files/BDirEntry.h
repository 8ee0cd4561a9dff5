/// \file
/// BDirEntry: one path as a value, with the operations that take it apart and put it together
/// and a few that touch the directory tree. Nothing normalises the path on construction. Both
/// '/' and '\' are read as separators; the separator this class writes is '/'. The path rules
/// and where they differ from Windows: docs/paths.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

/// A plain value: copies share the text; no lock, so threads may share a const one only.
/// Nothing throws but a failed allocation. The extension is the text behind the last dot of
/// the last component (none when a blank follows that dot).
class QV_EXPORT BDirEntry {
public:
    /// @name The path as given, or empty.
    ///@{
    BDirEntry() = default;
    BDirEntry(WString path) : m_path(std::move(path)) {}
    ///@}

    /// The path.
    WString GetFull() const { return m_path; }
    /// A copy without its last component; the full path when there is none to remove.
    BDirEntry GetPath() const;
    /// Removes the last component and its separator (a root stays). False, with the path
    /// unchanged, for a path of MAX_PATH (260) units or more or when nothing could be removed;
    /// a bare file name leaves an empty path and true.
    bool RemoveFileSpec();
    /// The last component, extension included; a trailing separator stays with it ("a/b/"
    /// gives "b/"). Empty when there is none.
    WString GetName() const;
    /// The last component without its extension; empty for a path over MAX_PATH units.
    WString GetBase() const;
    /// The text behind the extension's dot; empty without an extension.
    WString GetExtension() const;
    /// GetExtension, and the path is cut before the extension's dot; a path without extension
    /// stays as it is.
    WString CutExtension();
    /// \p ext, given without dot, replaces the extension's text, or is appended with a dot
    /// ("a.txt", "a" and "a." all give "a.bmp").
    void ChangeExtension(WString const& ext);
    /// The last component becomes \p name. A path without directory gives a separator and
    /// \p name ("/name"), as on Windows.
    void ChangeName(WString name);
    /// The canonical combined path ("." and ".." resolved, separators single); an absolute
    /// right side replaces this path. When the combined path would reach MAX_PATH units, the
    /// right side is appended behind a separator as it is.
    BDirEntry& operator+=(BDirEntry const& other);

    /// @name The file system. Each answers false on any failure; no error is kept.
    ///@{
    /// Something (a file or a directory) exists under the path.
    bool Exists() const;
    /// The path names a directory without entries; says nothing of the path's text.
    bool IsEmpty() const;
    /// Creates the directory with its missing parents; false when it already exists.
    bool MakeDir() const;
    /// Removes the directory, which must be empty.
    bool RemoveDir() const;
    ///@}

private:
    WString m_path;
};
