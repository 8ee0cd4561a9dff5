#pragma once

#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

// The text of the calling thread's last system error, or an empty string when the system has
// none. Call it before anything else on the thread can change that error. Linux's texts carry
// no line end, where Windows puts CR LF behind its own.
QV_EXPORT WString GetLastErrorMessage();
