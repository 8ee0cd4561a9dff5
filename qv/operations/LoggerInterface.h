/// \file
/// Qv::LoggerInterface: the log sink, where Qv::Log hands its messages.
#pragma once

#include <qv/core/Export.h>
#include <qv/operations/ELog.h>

namespace Qv {

/// The application implements the sink and registers one object with
/// Qv::RegisterLoggerInterface; the library never owns it. Write runs under the log front
/// end's mutex, so a sink never sees two calls at once, and it must not log, register,
/// unregister or destroy itself from inside Write.
class QV_EXPORT LoggerInterface {
public:
    /// Takes the sink out of service if it is the registered one; another registered sink
    /// stays. Unregister a sink before it is destroyed while other threads may log.
    virtual ~LoggerInterface();
    /// One message, for every Log call while the sink is registered. source may be null;
    /// text is valid for the duration of the call, possibly empty.
    virtual void Write(char16_t const* source, ELog level, char16_t const* context,
                       char16_t const* text) = 0;
};

} // namespace Qv
