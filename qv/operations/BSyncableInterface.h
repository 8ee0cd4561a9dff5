// The locking vocabulary of the library: six operations that separate reading from writing.
// BSmartObj is a virtual base, so that a class which combines this interface with another
// BSmartObj-derived interface still has one reference count. All six are const: callers lock
// objects that they hold through const references, and every implementation keeps its lock
// state mutable.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT BSyncableInterface : public virtual BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BSyncableInterface)

    // The virtual operations in the order of their slots.
    virtual void LockR() const = 0;
    virtual void LockW() const = 0;
    virtual void UnlockR() const = 0;
    virtual void UnlockW() const = 0;
    virtual bool TryLockR() const = 0;
    virtual bool TryLockW() const = 0;
};
