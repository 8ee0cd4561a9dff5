/// \file
/// CMemoryBlockManager: the interface of an allocator of large blocks, and the process-wide
/// slot that QVAlloc and QVFree consult. CStdMemoryManager is the library's own. Design notes:
/// docs/memory.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/platform/WindowsTypes.h>

class CMemoryBlock;

class QV_EXPORT CMemoryBlockManager {
public:
    CMemoryBlockManager() = default;
    // A copied critical section would be no working lock, and copied frame lists two owners
    // of one piece of memory: managers are not copied.
    CMemoryBlockManager(CMemoryBlockManager const&) = delete;
    CMemoryBlockManager& operator=(CMemoryBlockManager const&) = delete;

    // The virtual operations in the order of their slots.
    virtual ~CMemoryBlockManager();
    /// Reserves a first frame of \p first bytes now and sets the size of frames made later on
    /// demand to \p later (both rounded up to whole pages). True, or a BError when the system
    /// refuses.
    virtual bool Init(unsigned long long first, unsigned long long later) = 0;
    /// A block of \p size bytes, owned by the manager until FreeMemoryBlock; a BError when
    /// the system has no memory for it.
    virtual CMemoryBlock* MemoryBlockAlloc(unsigned long long size) = 0;
    /// Gives a block of this manager back; null does nothing.
    virtual void FreeMemoryBlock(CMemoryBlock* block) = 0;
    /// Bytes handed out in blocks now.
    virtual unsigned long long MemoryInUse() = 0;
    /// Bytes taken from the system now.
    virtual unsigned long long TotalReservedMemory() = 0;
    virtual int NumberOfReservedBlocks() = 0;
    /// The granularity of every block.
    virtual unsigned long long PageSize() = 0;

    /// The manager's lock, recursive, for a caller that wants several figures read together.
    _RTL_CRITICAL_SECTION* CriticalSectionObject() const { return &m_critical_section; }

    /// Makes \p manager the one QVAlloc and QVFree use, replacing the one before; null returns
    /// them to the general heap. The manager is not owned: the caller keeps it alive while it
    /// is registered. Register at start-up, before the first QVAlloc, since a block must go
    /// back to the allocator that made it.
    static void RegisterMemoryManager(CMemoryBlockManager* manager);
    /// The registered manager, or null.
    static CMemoryBlockManager* RegisteredMemoryManager();

protected:
    mutable _RTL_CRITICAL_SECTION m_critical_section;
};
