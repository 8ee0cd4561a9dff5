#include <qv/operations/BProgressManager.h>

QV_REGISTER_CLASSNAME(BProgressManager);

namespace {
// Constant-initialised, so it is in place before any static constructor could register; its
// destructor gives up the library's reference when the library is unloaded.
constinit SP<BProgressManager> g_progressManager;
} // namespace

SP<BProgressManager> BProgressManager::Instance() {
    return g_progressManager;
}

void BProgressManager::RegisterInstance(SP<BProgressManager> manager) {
    // The argument holds its own reference, so registering the registered object again keeps
    // it alive.
    g_progressManager = std::move(manager);
}

bool BProgressManager::InstanceBreakLongOperation(bool flag) {
    BProgressManager* manager = g_progressManager.get();
    return manager && manager->BreakLongOperation(flag);
}

void BProgressManager::InstanceTestUserBreak() {
    if (BProgressManager* manager = g_progressManager.get())
        manager->TestUserBreak();
}
