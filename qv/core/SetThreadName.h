#pragma once

#include <qv/core/Export.h>
// Tells debuggers and tools what a thread is called. threadId is a thread id as
// GetCurrentThreadId gives it; 0xFFFFFFFF names the calling thread. Nothing depends on it, and
// a refusal by the system is ignored.
QV_EXPORT void SetThreadName(char const* name, unsigned long threadId);
