// The millisecond clocks and the plain sleep of the Windows interface: GetTickCount,
// GetTickCount64 and Sleep. Both counts run from an arbitrary origin on the monotonic clock,
// so a change of the wall-clock time never moves them. GetTickCount is the low 32 bits of
// GetTickCount64 and wraps after 49.7 days as on Windows; callers compare ticks by unsigned
// 32-bit difference.
#pragma once

#include <cstdint>

namespace qv::platform {

/// Milliseconds on the monotonic clock, truncated to 32 bits.
std::uint32_t GetTickCount() noexcept;
/// Milliseconds on the monotonic clock.
std::uint64_t GetTickCount64() noexcept;
/// Suspends the calling thread for at least the milliseconds given; 0 yields the processor.
void Sleep(std::uint32_t milliseconds) noexcept;

} // namespace qv::platform
