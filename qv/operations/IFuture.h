/// \file
/// The handle of running work, given by a scheduler. The library declares it and supplies the
/// two waits over a set of futures; schedulers implement the rest. The waits poll every 10 ms
/// through the virtual operations and hold no lock of the futures, so every operation must be
/// safe to call from a thread other than the work's own. Design notes: docs/operations.md.
#pragma once

#include <qv/core/BError.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/containers/BArray.h>
#include <qv/operations/AsyncResult.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/operations/IPromise.h>

class IFunctor;

class QV_EXPORT IFuture : public virtual BSyncableSmartObj {
public:
    QV_DECLARE_CLASSNAME(IFuture)

    // The virtual operations in the order of their slots.
    /// The state of the work after waiting up to \p milliseconds for it to be over; 0 must
    /// return at once. A wait that ran out answers Async::Timeout or the state the work is in.
    virtual Async::Result Wait(int milliseconds) = 0;
    /// Asks the work to stop. Called again on every pass of a cancelled wait: repeating it
    /// must be harmless.
    virtual void Cancel() = 0;
    /// Why the work failed: the error it raised once it is over in Async::Failed; code 0
    /// otherwise.
    virtual BError GetError() = 0;
    /// The progress of the work, from 0 to 1 by convention. Cheap: it is read often.
    virtual float Progress() = 0;
    /// The work this future stands for, from which its owner takes the results; a new
    /// reference.
    virtual SP<IFunctor> GetFunctor() = 0;

    /// Waits until every future of \p futures is over, or \p milliseconds have passed. Null
    /// entries are skipped. Answers the highest over-state of all (Async::Finished for an
    /// empty array, Async::FinishedState4 for nothing but null entries), or Async::Timeout.
    /// While \p promise (the waiter's own, may be null) is cancelled, every future is told to
    /// cancel on each pass and the promise gets the largest progress of them. Raises only what
    /// the futures raise.
    static Async::Result WaitForAll(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                    SP<IPromise> promise);
    /// Waits until one future of \p futures is over, and answers the state of the first over in
    /// array order; otherwise as WaitForAll. The promise, cancelled or not, gets a progress
    /// value on each pass that found none over.
    static Async::Result WaitForAny(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                    SP<IPromise> promise);
};
