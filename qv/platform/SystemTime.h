/// \file
/// The calendar conversions of kernel32 between a calendar record and a count of 100-ns ticks
/// since 1 January 1601 (UTC, proleptic Gregorian calendar). The profiles use the round trip
/// to check a time text and to fill in its day of the week.
#pragma once

#include <cstdint>
#include <qv/platform/WindowsTypes.h>

/// 100-ns ticks since 1 January 1601, split into two 32-bit halves as Windows stores them.
struct _FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};
static_assert(sizeof(_FILETIME) == 8);

namespace qv::platform {

/// Converts a calendar record; wDayOfWeek is ignored. False, with *fileTime untouched, for a
/// field out of range: year 1601 to 30827, month 1 to 12, a day that the month has, hour below
/// 24, minute and second below 60, milliseconds below 1000.
bool SystemTimeToFileTime(_SYSTEMTIME const* systemTime, _FILETIME* fileTime);
/// Converts a tick count back, with the day of the week (0 for Sunday). False, with
/// *systemTime untouched, for counts of 2^63 and above.
bool FileTimeToSystemTime(_FILETIME const* fileTime, _SYSTEMTIME* systemTime);

} // namespace qv::platform
