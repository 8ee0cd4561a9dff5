/// \file
/// GetLastErrorMessage: the text of the last system error, for the argument of a BError.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

/// The text of the calling thread's last system error (errno), or an empty string when the
/// system has none for its code. Call it before anything else on the thread can change that
/// error. Linux's texts carry no line end, where Windows puts CR LF behind its own.
QV_EXPORT WString GetLastErrorMessage();
