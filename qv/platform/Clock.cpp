#include "qv/platform/Clock.h"

#include <ctime>

namespace qv::platform {

bool QueryPerformanceCounter(long long* count) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    *count = static_cast<long long>(now.tv_sec) * 1000000000ll + now.tv_nsec;
    return true;
}

bool QueryPerformanceFrequency(long long* frequency) {
    *frequency = 1000000000ll;
    return true;
}

void GetLocalTime(_SYSTEMTIME* time) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    LocalTimeAt(now.tv_sec, now.tv_nsec, time);
}

void LocalTimeAt(long long seconds, long nanoseconds, _SYSTEMTIME* time) {
    std::tm local{};
    auto const at = static_cast<std::time_t>(seconds);
    localtime_r(&at, &local);
    time->wYear = static_cast<std::uint16_t>(local.tm_year + 1900);
    time->wMonth = static_cast<std::uint16_t>(local.tm_mon + 1);
    time->wDayOfWeek = static_cast<std::uint16_t>(local.tm_wday);
    time->wDay = static_cast<std::uint16_t>(local.tm_mday);
    time->wHour = static_cast<std::uint16_t>(local.tm_hour);
    time->wMinute = static_cast<std::uint16_t>(local.tm_min);
    time->wSecond = static_cast<std::uint16_t>(local.tm_sec);
    time->wMilliseconds = static_cast<std::uint16_t>(nanoseconds / 1000000);
}

} // namespace qv::platform
