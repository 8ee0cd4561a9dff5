// What the process holds in memory, standing in for the working-set figure of
// GetProcessMemoryInfo: read from /proc/self/statm.
#pragma once

#include <cstdint>

namespace qv::platform {

// Bytes of the process's memory that are resident now (its resident set size), or 0 when the
// system does not say.
std::uint64_t ProcessResidentBytes();

} // namespace qv::platform
