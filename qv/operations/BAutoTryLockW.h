// Tries a write lock once and, if it got it, holds it for the lifetime of the guard.
// The interface's object must outlive the guard: the guard holds no reference on it.
#pragma once

#include <qv/operations/BSyncableInterface.h>

class BAutoTryLockW {
public:
    explicit BAutoTryLockW(BSyncableInterface const& lock)
        : m_lock(&lock), m_locked(lock.TryLockW()) {}
    BAutoTryLockW(BAutoTryLockW const&) = delete;
    BAutoTryLockW& operator=(BAutoTryLockW const&) = delete;
    ~BAutoTryLockW() {
        if (m_locked)
            m_lock->UnlockW();
    }

    bool IsLocked() const { return m_locked; }

private:
    BSyncableInterface const* m_lock;
    bool m_locked;
};
