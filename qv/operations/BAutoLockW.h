// Holds a write lock for the lifetime of the guard. Destructors do not throw, so an UnlockW
// that reports a wrong lock order by throwing ends the program here, as it does on Windows.
// The interface's object must outlive the guard: the guard holds no reference on it.
#pragma once

#include <qv/operations/BSyncableInterface.h>

class BAutoLockW {
public:
    explicit BAutoLockW(BSyncableInterface const& lock) : m_lock(&lock) { m_lock->LockW(); }
    BAutoLockW(BAutoLockW const&) = delete;
    BAutoLockW& operator=(BAutoLockW const&) = delete;
    ~BAutoLockW() { m_lock->UnlockW(); }

private:
    BSyncableInterface const* m_lock;
};
