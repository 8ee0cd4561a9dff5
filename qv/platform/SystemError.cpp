#include <cerrno>
#include <cstring>
#include <qv/platform/SystemError.h>

namespace qv::platform {

int GetLastError() noexcept {
    return errno;
}

void SetLastError(int code) noexcept {
    errno = code;
}

namespace {

// strerror_r comes in two forms; overloads pick whichever the C library declares.
[[maybe_unused]] char const* Result(int rc, char const* buffer) {
    return rc == 0 ? buffer : nullptr;
}
[[maybe_unused]] char const* Result(char const* text, char const*) {
    return text;
}

} // namespace

std::string SystemMessage(int code) {
    char buffer[256] = {};
    char const* text = Result(strerror_r(code, buffer, sizeof buffer), buffer);
    // Windows answers nothing for a code it does not know; glibc makes up "Unknown error N".
    if (!text || std::strncmp(text, "Unknown error", 13) == 0)
        return {};
    return text;
}

} // namespace qv::platform
