// A smart object with one recursive mutex behind the six lock operations. It makes no
// difference between readers and writers: a thread that holds the object in any way may lock
// it again in any way, which operations rely on when a write-locked section calls a getter
// that read-locks.
#pragma once

#include <mutex>
#include <qv/core/Export.h>
#include <qv/operations/BSyncableInterface.h>

class QV_EXPORT BSyncableSmartObj : public BSyncableInterface {
public:
    QV_DECLARE_CLASSNAME(BSyncableSmartObj)

    BSyncableSmartObj() = default;
    // A copy is a new object with a lock of its own, free.
    BSyncableSmartObj(BSyncableSmartObj const& other) : BSmartObj(other) {}
    BSyncableSmartObj& operator=(BSyncableSmartObj const&) { return *this; }

    // Lock the mutex; a failure of the system's mutex is raised as std::system_error.
    void LockR() const override;
    void LockW() const override;
    void UnlockR() const override;
    void UnlockW() const override;
    // True when the mutex was taken, also when the calling thread held it already.
    bool TryLockR() const override;
    bool TryLockW() const override;

private:
    mutable std::recursive_mutex m_mutex;
};
