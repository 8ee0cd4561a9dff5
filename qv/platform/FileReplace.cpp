// The lock is flock() on a separate lock file: the data file itself is replaced by rename, and
// a lock on a file that has just been renamed over would guard nothing. flock() locks belong to
// an open file description, so every FileLock opens the lock file afresh and threads of one
// process queue like processes.
#include <qv/platform/FileReplace.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qv::platform {

namespace {

std::string DirectoryOf(std::string const& path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

FileStamp StampOf(std::string const& nativePath) {
    struct stat info;
    if (::stat(nativePath.c_str(), &info) != 0)
        return {};
    return {static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec,
            static_cast<long long>(info.st_size)};
}

std::string LockPathOf(std::string const& nativePath) {
    std::size_t const start = nativePath.rfind('/') + 1; // 0 without a slash
    return nativePath.substr(0, start) + "." + nativePath.substr(start) + ".lock";
}

FileLock::FileLock(std::string const& nativePath) {
    m_fd = ::open(LockPathOf(nativePath).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_fd < 0)
        return;
    while (::flock(m_fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            ::close(m_fd);
            m_fd = -1;
            return;
        }
    }
}

FileLock::~FileLock() {
    if (m_fd >= 0)
        ::close(m_fd); // closing the description releases the flock
}

bool CanReplaceFile(std::string const& nativePath) {
    if (::access(DirectoryOf(nativePath).c_str(), W_OK | X_OK) != 0)
        return false;
    return ::access(nativePath.c_str(), F_OK) != 0 || ::access(nativePath.c_str(), W_OK) == 0;
}

bool ReplaceFile(std::string const& nativePath, std::string_view bytes, int mode) {
    std::size_t const start = nativePath.rfind('/') + 1;
    std::string temporary =
        nativePath.substr(0, start) + "." + nativePath.substr(start) + ".XXXXXX";
    int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return false;
    struct stat existing;
    if (mode < 0)
        mode = ::stat(nativePath.c_str(), &existing) == 0 ? existing.st_mode & 07777 : 0644;
    bool ok =
        ::fchmod(fd, static_cast<mode_t>(mode)) == 0 && WriteAll(fd, bytes) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (!ok || ::rename(temporary.c_str(), nativePath.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    // The rename itself is only durable once the directory is on the disk.
    int directory = ::open(DirectoryOf(nativePath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        ::fsync(directory);
        ::close(directory);
    }
    return true;
}

std::FILE* OpenMemoryStream(char** buffer, std::size_t* size) {
    return ::open_memstream(buffer, size);
}

bool ReadWholeFile(std::string const& nativePath, std::string& bytes) {
    int fd = ::open(nativePath.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    bytes.clear();
    char buffer[65536];
    for (;;) {
        ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            ::close(fd);
            return false;
        }
        if (got == 0)
            break;
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return true;
}

} // namespace qv::platform
