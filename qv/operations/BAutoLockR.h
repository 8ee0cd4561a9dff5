// Holds a read lock for the lifetime of the guard.
// The interface's object must outlive the guard: the guard holds no reference on it.
#pragma once

#include <qv/operations/BSyncableInterface.h>

class BAutoLockR {
public:
    explicit BAutoLockR(BSyncableInterface const& lock) : m_lock(&lock) { m_lock->LockR(); }
    BAutoLockR(BAutoLockR const&) = delete;
    BAutoLockR& operator=(BAutoLockR const&) = delete;
    ~BAutoLockR() { m_lock->UnlockR(); }

private:
    BSyncableInterface const* m_lock;
};
