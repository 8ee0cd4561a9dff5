#include <qv/core/files/BDirEntry.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/PathText.h>
#include <string>

using namespace qv::platform;

namespace {

// The offset of the extension's dot, or npos.
std::size_t ExtensionDot(WString const& path) {
    char16_t const* text = path.CStr();
    char16_t const* ext = PathFindExtensionW(text);
    return *ext == u'.' ? static_cast<std::size_t>(ext - text) : std::u16string_view::npos;
}

bool EndsWithSeparator(WString const& path) {
    return !path.IsEmpty() && IsPathSeparator(path[path.Length() - 1]);
}

} // namespace

BDirEntry BDirEntry::GetPath() const {
    BDirEntry copy(*this);
    copy.RemoveFileSpec();
    return copy;
}

bool BDirEntry::RemoveFileSpec() {
    if (m_path.Length() >= MAX_PATH)
        return false;
    std::u16string buffer(m_path.View());
    if (!PathRemoveFileSpecW(buffer.data()))
        return false;
    m_path = buffer.c_str();
    return true;
}

WString BDirEntry::GetName() const {
    return PathFindFileNameW(m_path.CStr());
}

WString BDirEntry::GetBase() const {
    if (m_path.Length() > MAX_PATH)
        return {};
    std::u16string buffer(m_path.View());
    PathStripPathW(buffer.data());
    *const_cast<char16_t*>(PathFindExtensionW(buffer.c_str())) = 0;
    return buffer.c_str();
}

WString BDirEntry::GetExtension() const {
    std::size_t const dot = ExtensionDot(m_path);
    return dot == std::u16string_view::npos ? WString() : m_path.Sub(dot + 1);
}

WString BDirEntry::CutExtension() {
    std::size_t const dot = ExtensionDot(m_path);
    if (dot == std::u16string_view::npos)
        return {};
    WString ext = m_path.Sub(dot + 1);
    m_path.CutAt(dot);
    return ext;
}

void BDirEntry::ChangeExtension(WString const& ext) {
    std::size_t const dot = ExtensionDot(m_path);
    if (dot == std::u16string_view::npos)
        m_path += u'.';
    else
        m_path.CutAt(dot + 1);
    m_path += ext;
}

void BDirEntry::ChangeName(WString name) {
    std::u16string buffer(m_path.View());
    PathRemoveFileSpecW(buffer.data());
    WString path(buffer.c_str());
    if (!EndsWithSeparator(path))
        path += kPathSeparator;
    m_path = path + name;
}

BDirEntry& BDirEntry::operator+=(BDirEntry const& other) {
    char16_t combined[MAX_PATH];
    if (PathCombineW(combined, m_path.CStr(), other.m_path.CStr())) {
        m_path = combined;
        return *this;
    }
    if (!EndsWithSeparator(m_path))
        m_path += kPathSeparator;
    m_path += other.m_path;
    return *this;
}

bool BDirEntry::Exists() const {
    return PathFileExistsW(m_path.CStr());
}

bool BDirEntry::IsEmpty() const {
    return PathIsDirectoryEmptyW(m_path.CStr());
}

bool BDirEntry::MakeDir() const {
    return SHCreateDirectoryExW(nullptr, m_path.CStr(), nullptr) == ERROR_SUCCESS;
}

bool BDirEntry::RemoveDir() const {
    return RemoveDirectoryW(m_path.CStr());
}
