/// \file
/// CMemoryBlock: what a caller of QVAlloc holds. A large contiguous block of memory, seen only
/// through its start, end and size; the allocator that made it owns it, and QVFree gives it
/// back. Design notes: docs/memory.md.
#pragma once

#include <qv/core/Export.h>

class QV_EXPORT CMemoryBlock {
public:
    CMemoryBlock() = default;
    CMemoryBlock(CMemoryBlock const&) = delete;
    CMemoryBlock& operator=(CMemoryBlock const&) = delete;

    // The virtual operations in the order of their slots.
    virtual ~CMemoryBlock();
    /// The first byte of the block; null for a block of size 0. Fixed for the block's life, so
    /// any thread may ask.
    virtual void* Start() const = 0;
    /// The first byte behind the requested size: Start() + Size().
    virtual void* End() const = 0;
    /// The requested size in bytes (not rounded).
    virtual unsigned long long Size() const = 0;
};
