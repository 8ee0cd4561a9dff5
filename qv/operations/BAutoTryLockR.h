// Tries a read lock once and, if it got it, holds it for the lifetime of the guard.
// The interface's object must outlive the guard: the guard holds no reference on it.
#pragma once

#include <qv/operations/BSyncableInterface.h>

class BAutoTryLockR {
public:
    explicit BAutoTryLockR(BSyncableInterface const& lock)
        : m_lock(&lock), m_locked(lock.TryLockR()) {}
    BAutoTryLockR(BAutoTryLockR const&) = delete;
    BAutoTryLockR& operator=(BAutoTryLockR const&) = delete;
    ~BAutoTryLockR() {
        if (m_locked)
            m_lock->UnlockR();
    }

    bool IsLocked() const { return m_locked; }

private:
    BSyncableInterface const* m_lock;
    bool m_locked;
};
