/// \file
/// QVPost, QVSend: the short way to the registered dispatcher (BDispatcher), used wherever the
/// library reports. Callable from any thread; no lock of their own.
#pragma once

#include <qv/core/Export.h>
/// The dispatcher's Post; its answer is dropped, and without a dispatcher nothing happens.
QV_EXPORT void QVPost(unsigned int message, unsigned long long param1, unsigned long long param2);
/// The dispatcher's Send; its answer is dropped, and without a dispatcher nothing happens.
QV_EXPORT void QVSend(unsigned int message, unsigned long long param1, unsigned long long param2);
/// True on the registered dispatcher's thread; false everywhere without a dispatcher.
QV_EXPORT bool QVCurrentThreadIsDispatcherThread();
