// The platform's high-resolution counter and local calendar time. The counter is the
// monotonic clock in nanoseconds, so its frequency is 10^9 and a value read in normal use is
// never 0 (the machine has been up for some time). Local time follows the TZ rules of the C
// library.
#pragma once

#include <qv/platform/WindowsTypes.h>

namespace qv::platform {

// The counter now; true (the call cannot fail here).
bool QueryPerformanceCounter(long long* count);
// Ticks per second; true.
bool QueryPerformanceFrequency(long long* frequency);
// Year, month (1 to 12), day of the week (0 Sunday), day, hour, minute, second, millisecond.
void GetLocalTime(_SYSTEMTIME* time);
// The local calendar fields of a moment given as seconds and nanoseconds since 1970 (UTC):
// the conversion behind GetLocalTime.
void LocalTimeAt(long long seconds, long nanoseconds, _SYSTEMTIME* time);

} // namespace qv::platform
