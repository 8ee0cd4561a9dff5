#include <qv/memory/CStdMemoryBlock.h>

QV_REGISTER_CLASSNAME(CStdMemoryBlock);

CStdMemoryBlock::CStdMemoryBlock(CStdMemoryManager& manager, void* address, unsigned long long size,
                                 unsigned long long allocatedSize)
    : m_manager(&manager), m_size(size), m_allocated_size(allocatedSize), m_address(address) {}

CStdMemoryBlock::~CStdMemoryBlock() = default;

unsigned long long CStdMemoryBlock::AllocatedSize() const {
    return m_allocated_size;
}
