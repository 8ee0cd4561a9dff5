// The last system error of the calling thread and its text: errno and strerror_r standing in
// for GetLastError and FormatMessageW.
#pragma once

#include <string>

namespace qv::platform {

// The Windows error numbers the services of this layer answer with, under their Windows names,
// so that code ported from Windows compares results as it did there.
constexpr int ERROR_SUCCESS = 0;
constexpr int ERROR_FILE_NOT_FOUND = 2;
constexpr int ERROR_PATH_NOT_FOUND = 3;
constexpr int ERROR_ACCESS_DENIED = 5;
constexpr int ERROR_INVALID_HANDLE = 6;
constexpr int ERROR_FILE_EXISTS = 80;
constexpr int ERROR_INVALID_PARAMETER = 87;
constexpr int ERROR_BAD_PATHNAME = 161;
constexpr int ERROR_ALREADY_EXISTS = 183;
constexpr int ERROR_MORE_DATA = 234;
constexpr int ERROR_NO_MORE_ITEMS = 259;
constexpr int ERROR_KEY_DELETED = 1018;

int GetLastError() noexcept;
void SetLastError(int code) noexcept;
// The system's text for code, or empty when the system has none.
std::string SystemMessage(int code);

} // namespace qv::platform
