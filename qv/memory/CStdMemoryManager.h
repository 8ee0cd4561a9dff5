/// \file
/// CStdMemoryManager: the library's block allocator. It takes memory from the system in big
/// page-aligned frames and hands out page-granular blocks from their gaps, first fit from the
/// lowest address. A freed block's pages go back to the system's accounting at once, but the
/// frame stays reserved, so that the next block that fits reuses the gap without a system
/// call; only while more than kReleaseLimit bytes are reserved does an emptied frame go back
/// to the system. Every change of the figures is announced by posting MSG_MEMORY_CHANGED.
///
/// One manager serves many threads at once: every operation runs under its recursive critical
/// section, which is held while the message is posted (so a dispatcher's Post must not wait).
/// Design notes and figures: docs/memory.md.
#pragma once

#include <memory>
#include <qv/core/Export.h>
#include <qv/memory/CMemoryBlockManager.h>

class CStdMemoryBlock;

class QV_EXPORT CStdMemoryManager : public CMemoryBlockManager {
public:
    /// Empty: no frame until Init or the first request.
    CStdMemoryManager();
    /// Gives back every frame that no block occupies any more. A frame that still holds blocks
    /// keeps its memory, since callers may still point into it; the blocks themselves go.
    ~CStdMemoryManager() override;

    // The virtual operations of CMemoryBlockManager.
    /// Reserves a frame of \p first bytes (rounded up to pages) and makes frames of \p later
    /// bytes (rounded up) when the existing ones are full. True, or BError 25021 with the
    /// system's text when the system refuses; \p first = 0 is refused that way. The size of
    /// later frames is set even then.
    bool Init(unsigned long long first, unsigned long long later) override;
    /// A block of \p size bytes in the first gap that fits, in the oldest frame that has one;
    /// otherwise in a new frame of the later-frame size, or of the block's own rounded size
    /// when that is larger. Size 0 gives a block with a null start that occupies nothing. The
    /// memory is not cleared: a reused gap reads as zeros or as what was there before. Raises
    /// BError 25021 with the system's text when a new frame is refused (also for a size too
    /// large to round up); the manager is then unchanged.
    CMemoryBlock* MemoryBlockAlloc(unsigned long long size) override;
    /// Gives a block back: its pages leave the resident memory, its gap is free for the next
    /// block. Null does nothing; a block of another manager of this class, or one already
    /// gone, changes nothing. A block of another kind (made on the general heap before
    /// registration) raises BError 25021 with "$IDS_ErrorHint26" as first argument and is
    /// left to the caller.
    void FreeMemoryBlock(CMemoryBlock* block) override;
    /// The sum of the allocated (page-rounded) sizes of all blocks.
    unsigned long long MemoryInUse() override;
    /// The sum of the sizes of all frames.
    unsigned long long TotalReservedMemory() override;
    /// Always 1, however many frames there are.
    int NumberOfReservedBlocks() override;
    unsigned long long PageSize() override;

    // The virtual operations added behind those.
    /// Both the same as MemoryInUse: nothing here distinguishes locked memory.
    virtual unsigned long long SizeOfAllocatedMemory() const;
    virtual unsigned long long SizeOfLockedMemory() const;

    /// The system's page size, the granularity of all sizes here; known before any manager
    /// exists.
    static unsigned long long PAGESIZE();

    /// An emptied frame goes back to the system only while more than this is reserved.
    static constexpr unsigned long long kReleaseLimit = 1'673'741'824; // 0x63C34600

private:
    struct State;
    std::unique_ptr<State> m_state;
};
