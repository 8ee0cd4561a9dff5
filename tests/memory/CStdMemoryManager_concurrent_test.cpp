#include <MessageCounter.h>
#include <ThreadTestSupport.h>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <qv/memory/CStdMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/memory/QVAlloc.h>
#include <qv/operations/BCriticalSection.h>
#include <qv/operations/MessageNumbers.h>
#include <random>
#include <thread>
#include <vector>

namespace {

unsigned long long const P = CStdMemoryManager::PAGESIZE();

} // namespace

TEST(CStdMemoryManagerConcurrent, FiguresStayExactUnderThreadsThatAllocateAndFree) {
    // Small requests share the first frame; large ones, and those that find it full, make
    // frames of their own.
    constexpr unsigned long long kMaxPages = 24;
    MessageCounter::Installed messages;
    CStdMemoryManager manager;
    manager.Init(64 * P, 16 * P);
    CMemoryBlockManager::RegisterMemoryManager(&manager);
    constexpr int kThreads = 4, kRounds = 300, kKept = 3;
    std::atomic<bool> running{true};
    std::atomic<int> wrongMarks{0};
    std::atomic<unsigned long long> liveBytes{0};
    std::atomic<long> changes{0};
    // A reader that checks what every figure must satisfy at any moment.
    auto reader = thread_test::Start([&] {
        while (running.load()) {
            BCriticalSection guard(manager.CriticalSectionObject());
            unsigned long long const inUse = manager.MemoryInUse();
            EXPECT_EQ(inUse % P, 0u);
            EXPECT_LE(inUse, manager.TotalReservedMemory());
        }
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            std::mt19937 random(static_cast<unsigned>(t + 1));
            std::uniform_int_distribution<unsigned long long> size(1, kMaxPages * P);
            auto const mark = static_cast<unsigned char>(t + 1);
            std::vector<CMemoryBlock*> kept;
            // Each block is filled with its owner's mark: two blocks handed the same pages show
            // up as a wrong mark.
            auto give = [&](CMemoryBlock* block) {
                auto const* bytes = static_cast<unsigned char const*>(block->Start());
                if (std::count(bytes, bytes + block->Size(), mark) != std::ptrdiff_t(block->Size()))
                    ++wrongMarks;
                liveBytes -= block->Size() ? (block->Size() + P - 1) / P * P : 0;
                QVFree(block);
                ++changes;
            };
            for (int round = 0; round < kRounds; ++round) {
                CMemoryBlock* block = QVAlloc(round % 17 == 0 ? 0 : size(random));
                liveBytes += (block->Size() + P - 1) / P * P;
                changes += block->Size() ? 1 : 0;
                if (block->Size())
                    std::memset(block->Start(), mark, block->Size());
                kept.push_back(block);
                if (kept.size() > kKept) {
                    give(kept.front());
                    kept.erase(kept.begin());
                }
            }
            // One block stays with each thread, to be counted after the join.
            while (kept.size() > 1) {
                give(kept.back());
                kept.pop_back();
            }
        });
    for (auto& thread : threads)
        thread.join();
    running = false;
    reader.get();

    EXPECT_EQ(wrongMarks.load(), 0) << "two blocks shared pages";
    EXPECT_EQ(manager.MemoryInUse(), liveBytes.load());
    auto const posted = messages->Take();
    EXPECT_EQ(static_cast<long>(posted.size()), changes.load());
    for (auto const& m : posted)
        EXPECT_EQ(m.number, MSG_MEMORY_CHANGED);
    CMemoryBlockManager::RegisterMemoryManager(nullptr);
}
