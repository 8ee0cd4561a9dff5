/// \file
/// BSyncableInterface: the locking vocabulary of the library. See docs/locks.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

/// Six operations that separate reading from writing; BSyncableSmartObj (one recursive mutex)
/// and BLockRW (a reader/writer lock) implement them, and the guards BAutoLockR, BAutoLockW,
/// BAutoTryLockR and BAutoTryLockW drive them. BSmartObj is a virtual base, so that a class
/// which combines this interface with another BSmartObj-derived interface still has one
/// reference count. All six are const: callers lock objects that they hold through const
/// references, and every implementation keeps its lock state mutable. Every lock and try that
/// succeeds needs its matching unlock on the same thread.
class QV_EXPORT BSyncableInterface : public virtual BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BSyncableInterface)

    // The virtual operations in the order of their slots.
    /// Takes the read side, waiting as long as it takes.
    virtual void LockR() const = 0;
    /// Takes the write side, waiting as long as it takes.
    virtual void LockW() const = 0;
    /// Gives back a read lock.
    virtual void UnlockR() const = 0;
    /// Gives back a write lock.
    virtual void UnlockW() const = 0;
    /// Tries the read side without waiting for long; true when taken. What "try" grants
    /// differs between implementations: see theirs.
    virtual bool TryLockR() const = 0;
    /// Tries the write side without waiting for long; true when taken.
    virtual bool TryLockW() const = 0;
};
