/// \file
/// The contract of a long-running operation: it reports status texts, progress and errors to
/// whoever watches it, and asks whether it has been told to stop. Two implementations:
/// BSyncOperationInterface for work on the dispatcher thread, in the caller's stack, and
/// BAsyncOperationInterface for work on a worker thread of the application's. Neither runs
/// anything. Design notes: docs/operations.md.
#pragma once

#include <qv/core/BError.h>
#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

class QV_EXPORT BOperationInterface : public virtual BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BOperationInterface)

    // The virtual operations in the order of their slots.
    /// True when the operation is to stop.
    virtual bool IsStopping() = 0;
    /// The same question; implementations may answer it more cheaply or less strictly.
    virtual bool IsStoppingWeak() = 0;
    /// Reports a status text (plain or a translation key).
    virtual void StatusInfo(WString const& text) = 0;
    /// Reports progress in percent.
    virtual void ProgressInfo(unsigned int percent) = 0;
    /// Reports a failure.
    virtual void ErrorInfo(BError const& error) = 0;
    /// The status text reported under \p id, kept for a later fetch when \p keep is true. An
    /// empty text when there is none.
    virtual WString FetchStatusMessage(int id, bool keep) = 0;
    /// Tells the operation to stop; does nothing here.
    virtual void Stop();
};
