#include <qv/operations/BCommandExecutionInterface.h>

QV_REGISTER_CLASSNAME(BCommandExecutionInterface);

namespace {
constinit SP<BCommandExecutionInterface> g_commandExecution;
} // namespace

void RegisterCommandExecution(BCommandExecutionInterface* commandExecution) {
    // SP counts the new object before it lets the old one go, so registering the registered
    // object again keeps it alive.
    g_commandExecution = commandExecution;
}

SP<BCommandExecutionInterface> CommandExecutionInstance() {
    return g_commandExecution;
}

int ExecuteCommand(WString command, bool flag, unsigned long value, void* data) {
    BCommandExecutionInterface* commandExecution = g_commandExecution.get();
    if (!commandExecution)
        return BCommandExecutionInterface::kNotRegistered;
    return commandExecution->ExecuteCommand(command, flag, value, data);
}
