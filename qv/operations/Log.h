/// \file
/// The logging front end: Qv::Log formats a message and hands it to the registered sink
/// (Qv::LoggerInterface) with its source, level and context; where it goes is the sink's
/// affair. Every call runs under one process-wide mutex, which the sink runs inside, so any
/// thread may log. See docs/locks.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/operations/ELog.h>
#include <qv/operations/LoggerInterface.h>

namespace Qv {

/// Formats the message and hands it to the sink; with no sink a call costs one lock and one
/// unlock: the message is not formatted and the arguments are not read. The format is 16-bit
/// text in the manner of the Windows runtime's wide printf (`%s` takes 16-bit text, `%S`
/// narrow text; see qv/platform/WideFormat.h). A null format gives an empty text, and so does a
/// message that does not fit in 4095 units or cannot be formatted: it is dropped, not cut.
/// No heap memory is used before the sink gets the text. What the sink throws passes through;
/// a failure of the mutex is raised as std::system_error.
QV_EXPORT void Log(char16_t const* source, ELog level, char16_t const* context,
                   char16_t const* format, ...);
/// The same with a null source.
QV_EXPORT void Log(ELog level, char16_t const* context, char16_t const* format, ...);

/// Installs the sink in place of the previous one, which is forgotten, not told. Borrowed:
/// the library never deletes it. Waits for a Write in progress; null turns logging off.
QV_EXPORT void RegisterLoggerInterface(LoggerInterface* sink);
/// Clears the slot if sink is the registered one (true); otherwise changes nothing (false).
/// Waits for a Write in progress, so the sink may be destroyed once this returns.
QV_EXPORT bool UnregisterLoggerInterface(LoggerInterface* sink);

} // namespace Qv
