/// \file
/// A piece of work that a scheduler runs. Before it runs one, a scheduler puts the work's
/// promise into its worker thread's promise slot, so that code however deep inside the work
/// asks IsCancelled or calls CheckCancel without a parameter being passed down.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/strings/WString.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/operations/IPromise.h>

class QV_EXPORT IFunctor : public virtual BSyncableSmartObj {
public:
    QV_DECLARE_CLASSNAME(IFunctor)

    // The virtual operations in the order of their slots.
    /// Does the work, on a scheduler's thread. A BError 25070 that leaves it means the work
    /// stopped because it was cancelled; any other exception means it failed.
    virtual void Execute() = 0;
    /// What the work does, in words (or a translation key), for status texts and logs.
    virtual WString Description() const = 0;

    /// Stores \p promise in the calling thread's slot; null empties it. The slot's reference
    /// is given up when it is replaced or when the thread ends.
    static void SetThreadPromise(SP<IPromise> promise);
    /// The calling thread's promise, a new reference; null if none.
    static SP<IPromise> GetThreadPromise();
    /// False without a promise; otherwise the promise's IsCancelled.
    static bool IsCancelled();
    /// Returns unless the calling thread's promise is cancelled; then raises BError 25070
    /// ("$ERR_USER_STOPS_FUNCTION") with empty arguments. Call it where stopping is safe.
    static void CheckCancel();
};
