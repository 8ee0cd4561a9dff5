#include <memory>
#include <qv/core/files/BFile.h>
#include <qv/core/strings/BString.h>
#include <qv/platform/FileStream.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/PathText.h>
#include <qv/platform/WideStream.h>

using namespace qv::platform;

namespace {

constexpr std::uint32_t kSkippedByDelete = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM |
                                           FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_OFFLINE;

struct HandleCloser {
    void operator()(void* h) const { CloseHandle(h); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

Handle OpenExisting(char16_t const* path, std::uint32_t access, std::uint32_t flags) {
    HANDLE h =
        path ? CreateFileW(path, access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, flags, nullptr)
             : INVALID_HANDLE_VALUE;
    return Handle(h == INVALID_HANDLE_VALUE ? nullptr : h);
}

// The whole file through an "rt" stream, block by block as text: a zero byte ends its block's
// text. False when it can't be opened.
bool ReadAnsiText(char16_t const* path, BString& text) {
    BFile file;
    if (!file.Open(path, u"rt"))
        return false;
    char block[1025];
    for (;;) {
        std::size_t const got = std::fread(block, 1, 1024, file);
        block[got] = 0;
        text += block;
        if (got < 1024 || std::feof(file))
            return true;
    }
}

// The directory part of a Delete spec, as a prefix for the names found; empty without one.
WString DeletePrefix(WString const& spec) {
    std::u16string dir(spec.View());
    if (!PathRemoveFileSpecW(dir.data()) || dir.c_str()[0] == 0)
        return {};
    WString prefix(dir.c_str());
    if (!IsPathSeparator(dir.c_str()[prefix.Length() - 1]))
        prefix += kPathSeparator;
    return prefix;
}

} // namespace

BFile::BFile(char16_t const* path, char16_t const* mode) {
    if (path && mode)
        Open(path, mode);
}

BFile::~BFile() {
    Close();
}

bool BFile::Open(char16_t const* path, char16_t const* mode) {
    if (m_stream || !path || !mode)
        return false;
    return _wfopen_s(&m_stream, path, mode) == 0 && m_stream;
}

bool BFile::OpenShared(char16_t const* path, char16_t const* mode) {
    if (m_stream || !path || !mode)
        return false;
    m_stream = _wfsopen(path, mode, _SH_DENYNO);
    return m_stream != nullptr;
}

void BFile::Close() {
    if (m_stream)
        std::fclose(m_stream);
    m_stream = nullptr;
}

bool BFile::Rewind() {
    if (!m_stream)
        return false;
    std::rewind(m_stream);
    return true;
}

bool BFile::Exist(char16_t const* path) {
    if (!path || !*path)
        return false;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(path, &data);
    if (find != INVALID_HANDLE_VALUE) {
        FindClose(find);
        return true;
    }
    std::u16string_view const text(path);
    return IsDirectory(path) && (!IsPathSeparator(text.back()) || text.size() == 1);
}

bool BFile::IsDirectory(char16_t const* path) {
    Handle h = OpenExisting(path, 0, FILE_FLAG_BACKUP_SEMANTICS);
    BY_HANDLE_FILE_INFORMATION info;
    return h && GetFileInformationByHandle(h.get(), &info) &&
           (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

long long BFile::Size(char16_t const* path) {
    Handle h = OpenExisting(path, GENERIC_READ, 0);
    long long size = -1;
    return h && GetFileSizeEx(h.get(), &size) ? size : -1;
}

bool BFile::IsUnicode(char16_t const* path) {
    BFile file;
    if (!path || !file.Open(path, u"rt"))
        return false;
    unsigned char head[3] = {};
    std::size_t const got = std::fread(head, 1, 3, file);
    bool const utf16 =
        got >= 2 && ((head[0] == 0xFF && head[1] == 0xFE) || (head[0] == 0xFE && head[1] == 0xFF));
    bool const utf8 = got == 3 && head[0] == 0xEF && head[1] == 0xBB && head[2] == 0xBF;
    return utf16 || utf8;
}

int BFile::ConvertToUnicode(char16_t const* path) {
    if (IsUnicode(path))
        return 0;
    BString ansi;
    if (!path || !ReadAnsiText(path, ansi))
        return kFileError;
    WString text(ansi);
    BFile file;
    if (!file.Open(path, u"wt,ccs=UNICODE"))
        return kFileError;
    // One formatted wide write, as on Windows: the text is the format, so each '%' is doubled
    // first and the formatting gives the text back unchanged.
    text.Replace(u"%", u"%%");
    WString formatted;
    formatted.Printf(text.CStr());
    fputws16(formatted.CStr(), file);
    return 0;
}

int BFile::Delete(WString spec) {
    if (spec.IsEmpty())
        return 0;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(spec.CStr(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return -1;
    WString const prefix = DeletePrefix(spec);
    int deleted = 0;
    do {
        if (!(data.dwFileAttributes & kSkippedByDelete) &&
            DeleteFileW((prefix + data.cFileName).CStr()))
            ++deleted;
    } while (FindNextFileW(find, &data));
    FindClose(find);
    return deleted;
}

std::pair<WString, int> BFile::GetShortPathNameW(WString path) {
    if (path.Length() >= MAX_PATH)
        path = WString(u"\\\\?\\") + path;
    std::u16string buffer(MAX_PATH + 1, u'\0');
    std::uint32_t length =
        qv::platform::GetShortPathNameW(path.CStr(), buffer.data(), MAX_PATH + 1);
    if (length == 0)
        return {WString(), kShortPathNameExt};
    if (length > MAX_PATH) {
        buffer.assign(length, u'\0');
        length = qv::platform::GetShortPathNameW(path.CStr(), buffer.data(), length);
    }
    WString const shortPath(buffer.c_str());
    return {shortPath, shortPath.Includes(u' ') ? kShortPathNameExt : 0};
}
