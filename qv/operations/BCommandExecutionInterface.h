// Running a named command through the application. The application implements this
// interface and registers one object; ExecuteCommand forwards to it. What the command text,
// the flag, the value, the data pointer and the result mean is agreed between the callers
// and the registered object: the library passes them on untouched.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/strings/WString.h>
#include <qv/operations/BSyncableSmartObj.h>

class QV_EXPORT BCommandExecutionInterface : public virtual BSyncableSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCommandExecutionInterface)

    // What ExecuteCommand answers when no object is registered.
    static constexpr int kNotRegistered = 13004;

    virtual int ExecuteCommand(WString command, bool flag, unsigned long value, void* data) = 0;
};

// Replaces the registered object; null returns to having none. The library keeps one
// reference until it is unloaded or the object is replaced. No lock: register at start-up.
QV_EXPORT void RegisterCommandExecution(BCommandExecutionInterface* commandExecution);
// A new reference to the registered object, or null.
QV_EXPORT SP<BCommandExecutionInterface> CommandExecutionInstance();
// The registered object's answer, or BCommandExecutionInterface::kNotRegistered (13004).
QV_EXPORT int ExecuteCommand(WString command, bool flag, unsigned long value, void* data);
