#include <MessageCounter.h>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/memory/CStdMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/memory/QVAlloc.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/platform/ProcessMemory.h>
#include <string>
#include <thread>
#include <vector>

namespace {

unsigned long long const P = CStdMemoryManager::PAGESIZE();

// One step of a sequence: allocate `size` bytes, or free the block made by step `free`.
struct Step {
    enum Kind { Alloc, Free } kind;
    unsigned long long size = 0; // Alloc
    int ref = -1;                // Free: the step whose block goes; Alloc: see where
    enum Where { Anywhere, At, Behind } where = Anywhere;
    unsigned long long reserved; // TotalReservedMemory afterwards
    unsigned long long inUse;    // MemoryInUse afterwards
    int posts;                   // MSG_MEMORY_CHANGED posted by the step
};

Step Alloc(unsigned long long size, unsigned long long reserved, unsigned long long inUse,
           Step::Where where = Step::Anywhere, int ref = -1) {
    return {Step::Alloc, size, ref, where, reserved, inUse, size ? 1 : 0};
}
Step Free(int ref, unsigned long long reserved, unsigned long long inUse, int posts = 1) {
    return {Step::Free, 0, ref, Step::Anywhere, reserved, inUse, posts};
}

struct Sequence {
    std::string name;
    std::pair<unsigned long long, unsigned long long> init; // Init's sizes; 0: no Init
    std::vector<Step> steps;
};

std::uintptr_t Address(void* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}

} // namespace

TEST(CStdMemoryManager, SequencesPlaceBlocksAndKeepTheFigures) {
    using W = Step::Where;
    std::vector<Sequence> const sequences = {
        {"first frame and later frames take their rounded sizes",
         {2 * P + 1, 5 * P - 1},
         {Alloc(3 * P, 3 * P, 3 * P), Alloc(P, 8 * P, 4 * P), Alloc(7 * P + 1, 16 * P, 12 * P),
          Alloc(4 * P, 16 * P, 16 * P, W::Behind, 1)}},
        {"a freed gap takes the next block that fits, a larger one goes behind",
         {16 * P, 16 * P},
         {Alloc(P, 16 * P, P), Alloc(2 * P, 16 * P, 3 * P, W::Behind, 0),
          Alloc(P, 16 * P, 4 * P, W::Behind, 1), Free(1, 16 * P, 2 * P),
          Alloc(3 * P, 16 * P, 5 * P, W::Behind, 2), Alloc(P + 1, 16 * P, 7 * P, W::At, 1),
          Free(5, 16 * P, 5 * P), Alloc(P, 16 * P, 6 * P, W::At, 1),
          Alloc(P, 16 * P, 7 * P, W::Behind, 7)}},
        {"without Init the first request makes a frame of its own size, kept when emptied",
         {0, 0},
         {Alloc(3 * P + 1, 4 * P, 4 * P), Free(0, 4 * P, 0), Alloc(2 * P, 4 * P, 2 * P, W::At, 0)}},
        {"blocks of size 0 occupy nothing and post only when freed",
         {P, P},
         {Alloc(0, P, 0), Alloc(0, P, 0), Alloc(P, P, P), Free(0, P, P), Free(1, P, P),
          Free(2, P, 0)}},
    };

    for (auto const& sequence : sequences) {
        SCOPED_TRACE(sequence.name);
        MessageCounter::Installed messages;
        CStdMemoryManager manager;
        EXPECT_TRUE(!sequence.init.first ||
                    manager.Init(sequence.init.first, sequence.init.second));
        messages->Take();
        // Blocks by step, with their places remembered: a freed block is gone.
        std::vector<CStdMemoryBlock*> blocks(sequence.steps.size(), nullptr);
        std::vector<void*> starts(sequence.steps.size()), ends(sequence.steps.size());
        for (std::size_t i = 0; i < sequence.steps.size(); ++i) {
            Step const& step = sequence.steps[i];
            SCOPED_TRACE("step " + std::to_string(i));
            if (step.kind == Step::Alloc) {
                auto* block = dynamic_cast<CStdMemoryBlock*>(manager.MemoryBlockAlloc(step.size));
                ASSERT_NE(block, nullptr);
                blocks[i] = block;
                starts[i] = block->Start();
                ends[i] = block->PageAddressOverThis();
                EXPECT_TRUE(block->Size() == step.size && Address(block->Start()) % P == 0 &&
                            block->AllocatedSize() == (step.size + P - 1) / P * P &&
                            (block->Start() == nullptr) == (step.size == 0));
                EXPECT_EQ(block->Start(), step.where == Step::At       ? starts[step.ref]
                                          : step.where == Step::Behind ? ends[step.ref]
                                                                       : block->Start());
                if (step.size)
                    std::memset(block->Start(), 0xA5, step.size); // the pages are there
            } else {
                manager.FreeMemoryBlock(blocks[step.ref]);
            }
            EXPECT_TRUE(manager.TotalReservedMemory() == step.reserved &&
                        manager.MemoryInUse() == step.inUse &&
                        manager.SizeOfAllocatedMemory() == step.inUse &&
                        manager.NumberOfReservedBlocks() == 1)
                << manager.TotalReservedMemory() / P << " pages reserved, "
                << manager.MemoryInUse() / P << " in use";
            auto const posted = messages->Take();
            ASSERT_EQ(posted.size(), static_cast<std::size_t>(step.posts));
            for (auto const& m : posted)
                EXPECT_TRUE(m.number == MSG_MEMORY_CHANGED && m.posted && !m.param1 && !m.param2);
        }
    }
}

TEST(CStdMemoryManager, AnEmptiedFrameGoesBackOnlyAboveTheLimit) {
    // Frames this large are reserved, never touched, so they cost address space only. At the
    // limit the emptied frame stays and serves the next request from the same place; one page
    // above it, it goes back and the next request makes a frame of its own.
    unsigned long long const atLimit = CStdMemoryManager::kReleaseLimit / P * P;
    for (auto [frame, kept] : {std::pair{atLimit, true}, {atLimit + P, false}}) {
        CStdMemoryManager manager;
        manager.Init(frame, P);
        CMemoryBlock* block = manager.MemoryBlockAlloc(P);
        void* start = block->Start();
        manager.FreeMemoryBlock(block);
        EXPECT_EQ(manager.TotalReservedMemory(), kept ? frame : 0) << frame;
        CMemoryBlock* again = manager.MemoryBlockAlloc(P);
        EXPECT_EQ(manager.TotalReservedMemory(), kept ? frame : P) << frame;
        EXPECT_TRUE(!kept || again->Start() == start) << frame;
        manager.FreeMemoryBlock(again);
    }
}

TEST(CStdMemoryManager, RefusedRequestsRaiseAndChangeNothing) {
    struct Row {
        char const* name;
        void (*request)(CStdMemoryManager&);
    } const rows[] = {
        {"Init with a first size of 0", [](CStdMemoryManager& m) { m.Init(0, P); }},
        {"more than the address space",
         [](CStdMemoryManager& m) { m.MemoryBlockAlloc(1ull << 62); }},
        {"a size that cannot be rounded to pages",
         [](CStdMemoryManager& m) { m.MemoryBlockAlloc(ULLONG_MAX); }},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        MessageCounter::Installed messages;
        CStdMemoryManager manager;
        CMemoryBlock* kept = manager.MemoryBlockAlloc(P);
        messages->Take();
        try {
            row.request(manager);
            ADD_FAILURE() << "no error raised";
        } catch (BError const& e) {
            EXPECT_TRUE(e.Error() == BError::kMemoryAllocFailed && !e.Argument(0).IsEmpty() &&
                        e.Argument(1).IsEmpty())
                << "the system's text only: " << e.Argument(0).ToUtf8();
        }
        EXPECT_TRUE(manager.TotalReservedMemory() == P && manager.MemoryInUse() == P);
        EXPECT_TRUE(messages->Take().empty());
        // The lock was left: another thread can still get in.
        std::thread([&] { manager.FreeMemoryBlock(kept); }).join();
        EXPECT_EQ(manager.MemoryInUse(), 0u);
    }
}

TEST(CStdMemoryManager, AFreedBlockLeavesResidentMemoryWhileItsFrameStays) {
    unsigned long long const size = 64ull << 20;
    CStdMemoryManager manager;
    manager.Init(size, size);
    CMemoryBlock* block = manager.MemoryBlockAlloc(size);
    std::memset(block->Start(), 1, size);
    std::uint64_t const touched = qv::platform::ProcessResidentBytes();
    ASSERT_GT(touched, size) << "the resident size can be read";
    manager.FreeMemoryBlock(block);
    std::uint64_t const freed = qv::platform::ProcessResidentBytes();
    EXPECT_GE(touched - std::min(touched, freed), size * 3 / 4)
        << "resident before " << touched << ", after " << freed;
    EXPECT_EQ(manager.TotalReservedMemory(), size);
}

// QVAlloc and QVFree with and without a registered manager.
class QVAllocTest : public ::testing::Test {
protected:
    void TearDown() override { CMemoryBlockManager::RegisterMemoryManager(nullptr); }
};

TEST_F(QVAllocTest, ARegisteredManagerServesAndRejectsWhatItDidNotMake) {
    CMemoryBlock* fromHeap = QVAlloc(P);
    CStdMemoryManager manager, other;
    CMemoryBlock* otherBlock = other.MemoryBlockAlloc(P);
    CMemoryBlockManager::RegisterMemoryManager(&manager);
    EXPECT_EQ(CMemoryBlockManager::RegisteredMemoryManager(), &manager);

    CMemoryBlock* block = QVAlloc(P + 1);
    EXPECT_EQ(manager.MemoryInUse(), 2 * P);
    MessageCounter::Installed messages;
    try {
        QVFree(fromHeap);
        ADD_FAILURE() << "a heap block was taken";
    } catch (BError const& e) {
        EXPECT_EQ(e.Error(), BError::kMemoryAllocFailed);
        EXPECT_EQ(e.Argument(0), WString(u"$IDS_ErrorHint26"));
    }
    QVFree(otherBlock); // another manager's block: nothing happens
    QVFree(nullptr);
    EXPECT_TRUE(messages->Take().empty());
    EXPECT_TRUE(manager.MemoryInUse() == 2 * P && other.MemoryInUse() == P);
    QVFree(block);
    EXPECT_TRUE(manager.MemoryInUse() == 0 && messages->Take().size() == 1);

    CMemoryBlockManager::RegisterMemoryManager(nullptr);
    std::memset(fromHeap->Start(), 0, P); // the rejected block is still the caller's
    QVFree(fromHeap);
    other.FreeMemoryBlock(otherBlock);
}
