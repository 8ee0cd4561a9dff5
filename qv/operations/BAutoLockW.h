/// \file
/// BAutoLockW: a scoped write lock over any BSyncableInterface. See docs/locks.md.
#pragma once

#include <qv/operations/BSyncableInterface.h>

/// Holds a write lock for the lifetime of the guard: LockW on construction, UnlockW on
/// destruction. The interface's object must outlive the guard: the guard holds no reference on
/// it. A guard belongs to the thread that made it; it cannot be copied.
class BAutoLockW {
public:
    /// Calls LockW and waits for it as long as it takes.
    explicit BAutoLockW(BSyncableInterface const& lock) : m_lock(&lock) { m_lock->LockW(); }
    BAutoLockW(BAutoLockW const&) = delete;
    BAutoLockW& operator=(BAutoLockW const&) = delete;
    /// Calls UnlockW. Destructors do not throw, so an UnlockW that reports a wrong lock order
    /// by throwing (BLockRW) ends the program here, as it does on Windows.
    ~BAutoLockW() { m_lock->UnlockW(); }

private:
    BSyncableInterface const* m_lock;
};
