/// \file
/// BCommandExecutionInterface: running a named command through the application. See
/// docs/locks.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/strings/WString.h>
#include <qv/operations/BSyncableSmartObj.h>

/// The application implements this interface and registers one object; ExecuteCommand
/// forwards to it. What the command text, the flag, the value, the data pointer and the result
/// mean is agreed between the callers and the registered object: the library passes them on
/// untouched. Whether the object may be called from several threads at once is its own affair.
class QV_EXPORT BCommandExecutionInterface : public virtual BSyncableSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCommandExecutionInterface)

    /// What ExecuteCommand answers when no object is registered.
    static constexpr int kNotRegistered = 13004;

    /// Runs command; the answer goes back to the caller of ::ExecuteCommand unchanged.
    virtual int ExecuteCommand(WString command, bool flag, unsigned long value, void* data) = 0;
};

/// Replaces the registered object; null returns to having none. The library takes its own
/// reference and keeps it until it is unloaded or the object is replaced; registering the
/// registered object again is harmless. No lock: register before other threads run.
QV_EXPORT void RegisterCommandExecution(BCommandExecutionInterface* commandExecution);
/// A new reference to the registered object, or null.
QV_EXPORT SP<BCommandExecutionInterface> CommandExecutionInstance();
/// The registered object's answer, or BCommandExecutionInterface::kNotRegistered (13004) when
/// none is registered. Throws nothing of its own; what the object throws passes through.
QV_EXPORT int ExecuteCommand(WString command, bool flag, unsigned long value, void* data);
