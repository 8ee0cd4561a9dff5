/// \file
/// BAutoTryLockR: a scoped attempt at a read lock over any BSyncableInterface. See
/// docs/locks.md.
#pragma once

#include <qv/operations/BSyncableInterface.h>

/// Tries a read lock once and, if it got it, holds it for the lifetime of the guard. The
/// interface's object must outlive the guard: the guard holds no reference on it. A guard
/// belongs to the thread that made it; it cannot be copied.
class BAutoTryLockR {
public:
    /// Calls TryLockR once and keeps its answer; never waits longer than TryLockR does.
    explicit BAutoTryLockR(BSyncableInterface const& lock)
        : m_lock(&lock), m_locked(lock.TryLockR()) {}
    BAutoTryLockR(BAutoTryLockR const&) = delete;
    BAutoTryLockR& operator=(BAutoTryLockR const&) = delete;
    /// Calls UnlockR only when the attempt succeeded.
    ~BAutoTryLockR() {
        if (m_locked)
            m_lock->UnlockR();
    }

    /// Whether the attempt got the lock.
    bool IsLocked() const { return m_locked; }

private:
    BSyncableInterface const* m_lock;
    bool m_locked;
};
