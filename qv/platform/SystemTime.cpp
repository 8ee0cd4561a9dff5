#include <qv/platform/SystemTime.h>

// Days are counted from 1 January 1601 with the civil-from-days arithmetic on 400-year eras
// (146097 days each); 1601 starts an era, so the eras need no offset.

namespace qv::platform {
namespace {

constexpr std::uint64_t kTicksPerMillisecond = 10000;
constexpr std::uint64_t kTicksPerDay = 86400000ull * kTicksPerMillisecond;
constexpr std::int64_t kDaysPerEra = 146097;

bool IsLeap(unsigned year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned DaysInMonth(unsigned year, unsigned month) {
    static constexpr unsigned char kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Days from 1 January 1601 to the first of January of year (year >= 1601).
std::int64_t DaysBeforeYear(unsigned year) {
    std::int64_t const y = year - 1601;
    return y * 365 + y / 4 - y / 100 + y / 400;
}

unsigned DaysBeforeMonth(unsigned year, unsigned month) {
    unsigned days = 0;
    for (unsigned m = 1; m < month; ++m)
        days += DaysInMonth(year, m);
    return days;
}

} // namespace

bool SystemTimeToFileTime(_SYSTEMTIME const* st, _FILETIME* fileTime) {
    if (!st || !fileTime)
        return false;
    if (st->wYear < 1601 || st->wYear > 30827 || st->wMonth < 1 || st->wMonth > 12 ||
        st->wDay < 1 || st->wDay > DaysInMonth(st->wYear, st->wMonth) || st->wHour > 23 ||
        st->wMinute > 59 || st->wSecond > 59 || st->wMilliseconds > 999)
        return false;
    std::uint64_t const days = static_cast<std::uint64_t>(DaysBeforeYear(st->wYear)) +
                               DaysBeforeMonth(st->wYear, st->wMonth) + (st->wDay - 1u);
    std::uint64_t const ms =
        ((st->wHour * 60ull + st->wMinute) * 60ull + st->wSecond) * 1000ull + st->wMilliseconds;
    std::uint64_t const ticks = days * kTicksPerDay + ms * kTicksPerMillisecond;
    fileTime->dwLowDateTime = static_cast<std::uint32_t>(ticks);
    fileTime->dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
    return true;
}

bool FileTimeToSystemTime(_FILETIME const* fileTime, _SYSTEMTIME* st) {
    if (!fileTime || !st)
        return false;
    std::uint64_t const ticks =
        (static_cast<std::uint64_t>(fileTime->dwHighDateTime) << 32) | fileTime->dwLowDateTime;
    if (ticks >> 63)
        return false;
    std::int64_t days = static_cast<std::int64_t>(ticks / kTicksPerDay);
    std::uint64_t ms = (ticks % kTicksPerDay) / kTicksPerMillisecond;
    _SYSTEMTIME out{};
    // 1 January 1601 was a Monday.
    out.wDayOfWeek = static_cast<std::uint16_t>((days + 1) % 7);
    unsigned year = 1601 + static_cast<unsigned>(days / kDaysPerEra) * 400;
    days %= kDaysPerEra;
    for (;;) {
        std::int64_t const inYear = IsLeap(year) ? 366 : 365;
        if (days < inYear)
            break;
        days -= inYear;
        ++year;
    }
    unsigned month = 1;
    for (;; ++month) {
        std::int64_t const inMonth = DaysInMonth(year, month);
        if (days < inMonth)
            break;
        days -= inMonth;
    }
    out.wYear = static_cast<std::uint16_t>(year);
    out.wMonth = static_cast<std::uint16_t>(month);
    out.wDay = static_cast<std::uint16_t>(days + 1);
    out.wMilliseconds = static_cast<std::uint16_t>(ms % 1000);
    ms /= 1000;
    out.wSecond = static_cast<std::uint16_t>(ms % 60);
    ms /= 60;
    out.wMinute = static_cast<std::uint16_t>(ms % 60);
    out.wHour = static_cast<std::uint16_t>(ms / 60);
    *st = out;
    return true;
}

} // namespace qv::platform
