/// \file
/// SetThreadName: names a thread for debuggers and tools.
#pragma once

#include <qv/core/Export.h>

/// Tells debuggers and tools what a thread of this process is called. \p threadId is a thread
/// id as GetCurrentThreadId gives it; 0 and 0xFFFFFFFF name the calling thread. The system
/// keeps the first 15 bytes of \p name. Nothing depends on it: a null name, an unknown thread
/// or a refusal by the system is ignored.
QV_EXPORT void SetThreadName(char const* name, unsigned long threadId);
