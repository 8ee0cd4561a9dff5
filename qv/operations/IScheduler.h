/// \file
/// Runs functors and gives futures for them. The library declares it and never calls it;
/// an application module implements it around its threads (examples/ThreadPoolScheduler.h
/// is one such implementation).
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>

class QV_EXPORT IScheduler : public BSyncableSmartObj {
public:
    QV_DECLARE_CLASSNAME(IScheduler)

    // The virtual operations in the order of their slots.
    /// Queues \p functor to run and returns its future; null for a null functor or when the
    /// scheduler takes no more work. Any thread may schedule.
    virtual SP<IFuture> Schedule(SP<IFunctor> functor) = 0;
    /// How many functors run at once at most: what callers split their work by.
    virtual unsigned int WorkerCount() const = 0;
};
