// Without a manager a block is a piece of the general heap wrapped in a BMemoryBlockStdHeap,
// which frees it in its destructor; QVFree deletes the block through the virtual destructor.
#include <cerrno>
#include <cstdlib>
#include <qv/core/BError.h>
#include <qv/core/GetLastErrorMessage.h>
#include <qv/memory/CMemoryBlock.h>
#include <qv/memory/CMemoryBlockManager.h>
#include <qv/memory/QVAlloc.h>

namespace {

class BMemoryBlockStdHeap final : public CMemoryBlock {
public:
    BMemoryBlockStdHeap(void* memory, unsigned long long size) : m_memory(memory), m_size(size) {}
    ~BMemoryBlockStdHeap() override { std::free(m_memory); }

    void* Start() const override { return m_memory; }
    void* End() const override { return static_cast<char*>(m_memory) + m_size; }
    unsigned long long Size() const override { return m_size; }

private:
    void* m_memory;
    unsigned long long m_size;
};

} // namespace

CMemoryBlock* QVAlloc(unsigned long long size) {
    if (CMemoryBlockManager* manager = CMemoryBlockManager::RegisteredMemoryManager())
        return manager->MemoryBlockAlloc(size);
    if (size == 0)
        return new BMemoryBlockStdHeap(nullptr, 0);
    void* memory = std::malloc(size);
    if (!memory) {
        // The same failure a manager reports, so that callers catch one thing.
        if (errno == 0)
            errno = ENOMEM;
        throw BError(BError::kMemoryAllocFailed, GetLastErrorMessage());
    }
    try {
        return new BMemoryBlockStdHeap(memory, size);
    } catch (...) {
        std::free(memory);
        throw;
    }
}

void QVFree(CMemoryBlock* block) {
    if (CMemoryBlockManager* manager = CMemoryBlockManager::RegisteredMemoryManager())
        manager->FreeMemoryBlock(block);
    else
        delete block;
}
