// The progress manager: how library code asks the application whether the running operation
// is to stop. The application implements it and registers one object at start-up; long loops
// ask through the static operations, which answer "go on" while none is registered, so that
// without a manager loops simply cannot be stopped.
//
// The application's manager has two further operations of its own that the library never
// calls; what they are named and take is the application's affair, so they are left to its
// derived class rather than declared here.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>

class QV_EXPORT BProgressManager : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BProgressManager)

    BProgressManager() = default;
    BProgressManager(BProgressManager const& other) : BSmartObj(other) {}
    BProgressManager(BProgressManager&& other) : BSmartObj(other) {}
    BProgressManager& operator=(BProgressManager const&) { return *this; }
    BProgressManager& operator=(BProgressManager&&) { return *this; }

    // True when the running operation is to stop. The library only ever passes false; what
    // the argument means is the manager's affair.
    virtual bool BreakLongOperation(bool flag) = 0;
    // Raises (a BError, as a rule) when the running operation is to stop.
    virtual void TestUserBreak() = 0;

    // A new reference to the registered manager, or null.
    static SP<BProgressManager> Instance();
    // Replaces the registered manager; null returns to having none. The library keeps one
    // reference until it is unloaded or the manager is replaced. No lock: register at
    // start-up, before other threads ask.
    static void RegisterInstance(SP<BProgressManager> manager);
    // The manager's answer, or false without one.
    static bool InstanceBreakLongOperation(bool flag);
    // Lets the manager raise; nothing without one.
    static void InstanceTestUserBreak();
};
