/// \file
/// BSyncableSmartObj: a smart object locked by one recursive mutex. See docs/locks.md.
#pragma once

#include <mutex>
#include <qv/core/Export.h>
#include <qv/operations/BSyncableInterface.h>

/// A smart object with one recursive mutex behind the six lock operations. It makes no
/// difference between readers and writers: a thread that holds the object in any way may lock
/// it again in any way, which operations rely on when a write-locked section calls a getter
/// that read-locks. The base of operations, futures, functors and schedulers; threads share it.
class QV_EXPORT BSyncableSmartObj : public BSyncableInterface {
public:
    QV_DECLARE_CLASSNAME(BSyncableSmartObj)

    /// An object with a free lock.
    BSyncableSmartObj() = default;
    /// A copy is a new object with a lock of its own, free; assignment leaves the lock alone.
    BSyncableSmartObj(BSyncableSmartObj const& other) : BSmartObj(other) {}
    BSyncableSmartObj& operator=(BSyncableSmartObj const&) { return *this; }

    /// @name Locking: LockR and LockW lock the mutex, UnlockR and UnlockW unlock it. A failure
    /// of the system's mutex is raised as std::system_error.
    ///@{
    void LockR() const override;
    void LockW() const override;
    void UnlockR() const override;
    void UnlockW() const override;
    ///@}
    /// @name Trying: true when the mutex was taken, also when the calling thread held it
    /// already; false at once when another thread holds it.
    ///@{
    bool TryLockR() const override;
    bool TryLockW() const override;
    ///@}

private:
    mutable std::recursive_mutex m_mutex;
};
