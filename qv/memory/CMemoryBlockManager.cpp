#include <atomic>
#include <qv/memory/CMemoryBlockManager.h>

namespace {
// Registration belongs to start-up, but worker threads read the slot on every QVAlloc: an
// atomic costs them nothing and keeps a late registration from being a data race.
std::atomic<CMemoryBlockManager*> registeredManager{nullptr};
} // namespace

CMemoryBlockManager::~CMemoryBlockManager() = default;

void CMemoryBlockManager::RegisterMemoryManager(CMemoryBlockManager* manager) {
    registeredManager.store(manager, std::memory_order_release);
}

CMemoryBlockManager* CMemoryBlockManager::RegisteredMemoryManager() {
    return registeredManager.load(std::memory_order_acquire);
}
