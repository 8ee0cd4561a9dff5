/// \file
/// An operation that runs on the dispatcher thread, in its caller's stack. It reports by
/// synchronous sends (MSG_SYNC_STATUS, MSG_SYNC_PROGRESS), raises its errors straight to the
/// caller, and takes its stop signal from the registered progress manager. On any other
/// thread, and with no dispatcher registered, it reports nothing and never stops. It keeps no
/// state and takes no lock.
#pragma once

#include <qv/operations/BOperationInterface.h>

class QV_EXPORT BSyncOperationInterface : public BOperationInterface {
public:
    QV_DECLARE_CLASSNAME(BSyncOperationInterface)

    /// On the dispatcher thread the progress manager's BreakLongOperation(false); false on any
    /// other thread or without a manager.
    bool IsStopping() override;
    /// As IsStopping.
    bool IsStoppingWeak() override;
    /// On the dispatcher thread sends MSG_SYNC_STATUS with a pointer to the text's units,
    /// valid only during the send and never null; nothing elsewhere.
    void StatusInfo(WString const& text) override;
    /// On the dispatcher thread sends MSG_SYNC_PROGRESS with the percent; nothing elsewhere.
    void ProgressInfo(unsigned int percent) override;
    /// On the dispatcher thread raises a copy of \p error; on any other thread drops it.
    void ErrorInfo(BError const& error) override;
    /// Always empty: synchronous texts travel by value during their send and are not stored.
    WString FetchStatusMessage(int id, bool keep) override;
};
