#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <qv/platform/CodePage.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/TextServices.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace qv::platform {

namespace {

std::uint32_t Attributes(struct stat const& st, std::u16string_view name) {
    std::uint32_t attributes = 0;
    if (S_ISDIR(st.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else if (!(st.st_mode & S_IWUSR))
        attributes |= FILE_ATTRIBUTE_READONLY;
    if (name.size() > 1 && name[0] == u'.' && name != u"..")
        attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

bool Stat(std::string const& native, struct stat& st) {
    return ::stat(native.c_str(), &st) == 0 || ::lstat(native.c_str(), &st) == 0;
}

// '*' and '?' on case-folded units, backtracking to the last star.
bool Match(std::u16string_view name, std::u16string_view pattern) {
    std::size_t n = 0, p = 0, starP = std::u16string_view::npos, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starP = p++;
            starN = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || ToUpperW(pattern[p]) == ToUpperW(name[n]))) {
            ++p;
            ++n;
        } else if (starP != std::u16string_view::npos) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

struct FindState {
    std::vector<WIN32_FIND_DATAW> entries;
    std::size_t next = 0;
};

void SetSize(std::uint32_t& high, std::uint32_t& low, long long size) {
    high = static_cast<std::uint32_t>(static_cast<unsigned long long>(size) >> 32);
    low = static_cast<std::uint32_t>(size);
}

// A found entry; false for a name that does not fit the platform's limit.
bool MakeEntry(std::string const& dir, std::u16string const& name, WIN32_FIND_DATAW& entry) {
    struct stat st {};
    if (name.size() >= MAX_PATH || !Stat(dir + Utf16ToUtf8(name), st))
        return false;
    entry = WIN32_FIND_DATAW{};
    entry.dwFileAttributes = Attributes(st, name);
    SetSize(entry.nFileSizeHigh, entry.nFileSizeLow, S_ISDIR(st.st_mode) ? 0 : st.st_size);
    std::copy(name.begin(), name.end(), entry.cFileName);
    return true;
}

struct FileHandle {
    int fd;
};

FileHandle* AsFile(HANDLE h) {
    return h && h != INVALID_HANDLE_VALUE ? static_cast<FileHandle*>(h) : nullptr;
}

bool IsReadOnlyFile(struct stat const& st) {
    return !S_ISDIR(st.st_mode) && !(st.st_mode & S_IWUSR);
}

} // namespace

std::uint32_t AttributesOf(char16_t const* path) {
    struct stat st {};
    if (!path || !Stat(NativePath(path), st))
        return 0xFFFFFFFF;
    return Attributes(st, PathFindFileNameW(path));
}

bool MatchesWildcard(char16_t const* name, char16_t const* pattern) {
    if (!name || !pattern)
        return false;
    std::u16string_view const n(name);
    std::u16string_view const p(pattern);
    if (p.ends_with(u".*") && Match(n, p.substr(0, p.size() - 2)))
        return true;
    if (p.size() > 1 && p.ends_with(u'.') && p.find_first_not_of(u'.') != std::u16string_view::npos)
        return n.find(u'.') == std::u16string_view::npos && Match(n, p.substr(0, p.size() - 1));
    return Match(n, p);
}

HANDLE FindFirstFileW(char16_t const* pattern, WIN32_FIND_DATAW* data) {
    if (!pattern || !data || !*pattern) {
        errno = ENOENT;
        return INVALID_HANDLE_VALUE;
    }
    std::u16string_view const full(pattern);
    char16_t const* namePattern = pattern + (full.find_last_of(u"/\\") + 1);
    std::u16string_view const dirPart =
        full.substr(0, static_cast<std::size_t>(namePattern - pattern));
    std::string const dir = dirPart.empty() ? std::string("./") : NativePath(dirPart);
    std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(dir.c_str()), ::closedir);
    auto state = std::make_unique<FindState>();
    while (listing && *namePattern) {
        dirent const* entry = ::readdir(listing.get());
        if (!entry)
            break;
        std::u16string const name = Utf8ToUtf16(entry->d_name);
        WIN32_FIND_DATAW found;
        if (MatchesWildcard(name.c_str(), namePattern) && MakeEntry(dir, name, found))
            state->entries.push_back(found);
    }
    if (state->entries.empty()) {
        errno = ENOENT;
        return INVALID_HANDLE_VALUE;
    }
    std::sort(state->entries.begin(), state->entries.end(), [](auto const& a, auto const& b) {
        return _wcsnicmp16(a.cFileName, b.cFileName, MAX_PATH) < 0;
    });
    *data = state->entries[state->next++];
    return state.release();
}

bool FindNextFileW(HANDLE find, WIN32_FIND_DATAW* data) {
    auto* state = static_cast<FindState*>(find);
    if (!state || find == INVALID_HANDLE_VALUE || !data || state->next >= state->entries.size()) {
        errno = ENOENT;
        return false;
    }
    *data = state->entries[state->next++];
    return true;
}

bool FindClose(HANDLE find) {
    if (!find || find == INVALID_HANDLE_VALUE)
        return false;
    delete static_cast<FindState*>(find);
    return true;
}

HANDLE CreateFileW(char16_t const* path, std::uint32_t access, std::uint32_t, void*,
                   std::uint32_t disposition, std::uint32_t flags, HANDLE) {
    if (!path || disposition != OPEN_EXISTING || (access & ~GENERIC_READ)) {
        errno = EINVAL;
        return INVALID_HANDLE_VALUE;
    }
    int const fd = ::open(NativePath(path).c_str(), (access ? O_RDONLY : O_PATH) | O_CLOEXEC);
    struct stat st {};
    if (fd >= 0 && ::fstat(fd, &st) == 0 &&
        (!S_ISDIR(st.st_mode) || (flags & FILE_FLAG_BACKUP_SEMANTICS)))
        return new FileHandle{fd};
    int const error = fd < 0 ? errno : EACCES;
    if (fd >= 0)
        ::close(fd);
    errno = error;
    return INVALID_HANDLE_VALUE;
}

bool GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* info) {
    FileHandle* h = AsFile(file);
    struct stat st {};
    if (!h || !info || ::fstat(h->fd, &st) != 0)
        return false;
    info->dwFileAttributes = Attributes(st, {});
    SetSize(info->nFileSizeHigh, info->nFileSizeLow, S_ISDIR(st.st_mode) ? 0 : st.st_size);
    info->nNumberOfLinks = static_cast<std::uint32_t>(st.st_nlink);
    return true;
}

bool GetFileSizeEx(HANDLE file, long long* size) {
    FileHandle* h = AsFile(file);
    struct stat st {};
    if (!h || !size || ::fstat(h->fd, &st) != 0)
        return false;
    *size = st.st_size;
    return true;
}

bool CloseHandle(HANDLE file) {
    FileHandle* h = AsFile(file);
    if (!h)
        return false;
    bool const ok = ::close(h->fd) == 0;
    delete h;
    return ok;
}

bool DeleteFileW(char16_t const* path) {
    struct stat st {};
    if (!path)
        return false;
    std::string const native = NativePath(path);
    if (::lstat(native.c_str(), &st) == 0 && IsReadOnlyFile(st)) {
        errno = EACCES;
        return false;
    }
    return ::unlink(native.c_str()) == 0;
}

int SHCreateDirectoryExW(void*, char16_t const* path, void const*) {
    if (!path || !*path)
        return ERROR_BAD_PATHNAME;
    std::filesystem::path const native(NativePath(path));
    std::error_code ec;
    if (std::filesystem::exists(native, ec))
        return std::filesystem::is_directory(native, ec) ? ERROR_ALREADY_EXISTS : ERROR_FILE_EXISTS;
    if (std::filesystem::create_directories(native, ec))
        return ERROR_SUCCESS;
    return ec == std::errc::permission_denied ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND;
}

bool RemoveDirectoryW(char16_t const* path) {
    return path && ::rmdir(NativePath(path).c_str()) == 0;
}

bool PathFileExistsW(char16_t const* path) {
    struct stat st {};
    return path && *path && Stat(NativePath(path), st);
}

bool PathIsDirectoryEmptyW(char16_t const* path) {
    if (!path)
        return false;
    std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(NativePath(path).c_str()), ::closedir);
    if (!listing)
        return false;
    while (dirent const* entry = ::readdir(listing.get())) {
        std::string_view const name(entry->d_name);
        if (name != "." && name != "..")
            return false;
    }
    return true;
}

std::uint32_t GetShortPathNameW(char16_t const* longPath, char16_t* shortPath,
                                std::uint32_t bufferLength) {
    if (!PathFileExistsW(longPath)) {
        errno = ENOENT;
        return 0;
    }
    std::u16string_view const path(longPath);
    auto const length = static_cast<std::uint32_t>(path.size());
    if (!shortPath || bufferLength <= length)
        return length + 1;
    std::copy(path.begin(), path.end(), shortPath);
    shortPath[length] = 0;
    return length;
}

} // namespace qv::platform
