/// \file
/// The channel through which running work learns that it has been cancelled and through
/// which a waiter hands on progress. Schedulers implement it; the library polls it.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT IPromise : public virtual BSmartObj {
public:
    QV_DECLARE_CLASSNAME(IPromise)

    // The virtual operations in the order of their slots.
    /// True from the moment the work is to stop. Polled often, from the work's own thread
    /// while another thread cancels: it must be cheap and safe against that.
    virtual bool IsCancelled() = 0;
    /// Takes a progress value, from 0 to 1 by convention.
    virtual void SetProgress(float progress) = 0;
};
