#include "qv/platform/Clock.h"

#include <qv/measures/Date.h>

Date::Date() {
    _SYSTEMTIME now{};
    qv::platform::GetLocalTime(&now);
    *this = Date(now.wDay, now.wMonth, now.wYear);
}
