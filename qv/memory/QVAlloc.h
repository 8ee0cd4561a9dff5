/// \file
/// QVAlloc and QVFree: the way to large blocks. With a registered CMemoryBlockManager they are
/// its MemoryBlockAlloc and FreeMemoryBlock; without one, blocks come from the general heap.
#pragma once

#include <qv/core/Export.h>

class CMemoryBlock;

/// A block of \p size bytes; for size 0 a block whose Start is null. The allocator keeps the
/// block: give it back with QVFree, under the same registration. A refused request raises
/// BError 25021 ("$ERR_MEM_ALLOC_FAILED") with the system's text as first argument, both
/// with a manager and on the general heap. Threads may allocate at the same time.
QV_EXPORT CMemoryBlock* QVAlloc(unsigned long long size);
/// Gives a block back to the allocator that made it; null does nothing. With a manager
/// registered, a block the manager did not make raises BError 25021 (see
/// CStdMemoryManager::FreeMemoryBlock).
QV_EXPORT void QVFree(CMemoryBlock* block);
