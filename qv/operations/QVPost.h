// The short way to the registered dispatcher, used wherever the library reports: the
// dispatcher's answer is dropped, and without a dispatcher nothing happens.
#pragma once

#include <qv/core/Export.h>
QV_EXPORT void QVPost(unsigned int message, unsigned long long param1, unsigned long long param2);
QV_EXPORT void QVSend(unsigned int message, unsigned long long param1, unsigned long long param2);
// True on the registered dispatcher's thread; false everywhere without a dispatcher.
QV_EXPORT bool QVCurrentThreadIsDispatcherThread();
