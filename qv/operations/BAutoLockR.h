/// \file
/// BAutoLockR: a scoped read lock over any BSyncableInterface. See docs/locks.md.
#pragma once

#include <qv/operations/BSyncableInterface.h>

/// Holds a read lock for the lifetime of the guard: LockR on construction, UnlockR on
/// destruction. The interface's object must outlive the guard: the guard holds no reference on
/// it. A guard belongs to the thread that made it; it cannot be copied.
class BAutoLockR {
public:
    /// Calls LockR and waits for it as long as it takes.
    explicit BAutoLockR(BSyncableInterface const& lock) : m_lock(&lock) { m_lock->LockR(); }
    BAutoLockR(BAutoLockR const&) = delete;
    BAutoLockR& operator=(BAutoLockR const&) = delete;
    ~BAutoLockR() { m_lock->UnlockR(); }

private:
    BSyncableInterface const* m_lock;
};
