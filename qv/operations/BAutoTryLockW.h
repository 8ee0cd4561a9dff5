/// \file
/// BAutoTryLockW: a scoped attempt at a write lock over any BSyncableInterface. See
/// docs/locks.md.
#pragma once

#include <qv/operations/BSyncableInterface.h>

/// Tries a write lock once and, if it got it, holds it for the lifetime of the guard. The
/// interface's object must outlive the guard: the guard holds no reference on it. A guard
/// belongs to the thread that made it; it cannot be copied.
class BAutoTryLockW {
public:
    /// Calls TryLockW once and keeps its answer; never waits longer than TryLockW does.
    explicit BAutoTryLockW(BSyncableInterface const& lock)
        : m_lock(&lock), m_locked(lock.TryLockW()) {}
    BAutoTryLockW(BAutoTryLockW const&) = delete;
    BAutoTryLockW& operator=(BAutoTryLockW const&) = delete;
    /// Calls UnlockW only when the attempt succeeded.
    ~BAutoTryLockW() {
        if (m_locked)
            m_lock->UnlockW();
    }

    /// Whether the attempt got the lock.
    bool IsLocked() const { return m_locked; }

private:
    BSyncableInterface const* m_lock;
    bool m_locked;
};
