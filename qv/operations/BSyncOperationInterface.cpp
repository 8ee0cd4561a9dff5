#include <cstdint>
#include <qv/operations/BProgressManager.h>
#include <qv/operations/BSyncOperationInterface.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>

QV_REGISTER_CLASSNAME(BSyncOperationInterface);

bool BSyncOperationInterface::IsStopping() {
    return QVCurrentThreadIsDispatcherThread() &&
           BProgressManager::InstanceBreakLongOperation(false);
}

bool BSyncOperationInterface::IsStoppingWeak() {
    return BSyncOperationInterface::IsStopping();
}

void BSyncOperationInterface::StatusInfo(WString const& text) {
    if (QVCurrentThreadIsDispatcherThread())
        QVSend(MSG_SYNC_STATUS, reinterpret_cast<std::uintptr_t>(text.CStr()), 0);
}

void BSyncOperationInterface::ProgressInfo(unsigned int percent) {
    if (QVCurrentThreadIsDispatcherThread())
        QVSend(MSG_SYNC_PROGRESS, percent, 0);
}

void BSyncOperationInterface::ErrorInfo(BError const& error) {
    if (QVCurrentThreadIsDispatcherThread())
        throw BError(error);
}

WString BSyncOperationInterface::FetchStatusMessage(int, bool) {
    return WString();
}
