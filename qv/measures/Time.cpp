#include "qv/platform/Clock.h"

#include <qv/measures/Time.h>

Time::Time() {
    _SYSTEMTIME now{};
    qv::platform::GetLocalTime(&now);
    *this = Time(now.wHour, now.wMinute, now.wSecond,
                 static_cast<unsigned short>(now.wMilliseconds / 10 % 100));
}
