// The last system error of the calling thread and its text: errno and strerror_r standing in
// for GetLastError and FormatMessageW.
#pragma once

#include <string>

namespace qv::platform {

int GetLastError() noexcept;
void SetLastError(int code) noexcept;
// The system's text for code, or empty when the system has none.
std::string SystemMessage(int code);

} // namespace qv::platform
