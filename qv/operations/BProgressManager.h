/// \file
/// The progress manager: how library code asks the application whether the running operation
/// is to stop. The application implements it and registers one object at start-up; long loops
/// ask through the static operations, which answer "go on" while none is registered, so that
/// without a manager loops simply cannot be stopped. Design notes: docs/operations.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>

class QV_EXPORT BProgressManager : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BProgressManager)

    /// @name Construction, copy and move: none of them copies anything of its own.
    ///@{
    BProgressManager() = default;
    BProgressManager(BProgressManager const& other) : BSmartObj(other) {}
    BProgressManager(BProgressManager&& other) : BSmartObj(other) {}
    BProgressManager& operator=(BProgressManager const&) { return *this; }
    BProgressManager& operator=(BProgressManager&&) { return *this; }
    ///@}

    // The virtual operations in the order of their slots.
    /// The application's side: a long operation with this (translatable) title begins, so the
    /// manager may show its stop button. The library never calls it.
    virtual void BeginLongOperation(WString const& title) = 0;
    /// True when the running operation is to stop. The library only ever passes false; what
    /// the argument means is the manager's affair. Any thread may ask.
    virtual bool BreakLongOperation(bool flag) = 0;
    /// The application's side: the long operation begun last has ended. The library never
    /// calls it.
    virtual void EndLongOperation() = 0;
    /// Raises (BError 25070, as a rule) when the running operation is to stop.
    virtual void TestUserBreak() = 0;

    /// A new reference to the registered manager, or null.
    static SP<BProgressManager> Instance();
    /// Replaces the registered manager; null returns to having none. The library keeps one
    /// reference until it is unloaded or the manager is replaced. No lock: register at
    /// start-up, before other threads ask.
    static void RegisterInstance(SP<BProgressManager> manager);
    /// The manager's answer, or false without one.
    static bool InstanceBreakLongOperation(bool flag);
    /// Lets the manager raise; nothing without one.
    static void InstanceTestUserBreak();
};
