#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <qv/core/files/BMemory.h>
#include <thread>

TEST(BMemoryConcurrent, SecondThreadWaitsInAllocateUntilRelease) {
    BMemory memory;
    ASSERT_NE(memory.Allocate(64), nullptr);
    std::atomic<bool> entered{false};
    std::thread other([&] {
        void* p = memory.Allocate(32);
        entered = true;
        EXPECT_NE(p, nullptr);
        memory.Release();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(entered.load());
    memory.Release(); // a release by a thread that does not hold it must not free the other
    other.join();
    EXPECT_TRUE(entered.load());
}

TEST(BMemoryConcurrent, UsersTakeTurns) {
    BMemory memory;
    int inside = 0;
    int maxInside = 0;
    auto work = [&] {
        for (int i = 0; i < 200; ++i) {
            auto* p = static_cast<int*>(memory.Allocate(sizeof(int) * (1 + i % 7)));
            ASSERT_NE(p, nullptr);
            maxInside = std::max(maxInside, ++inside);
            *p = i;
            --inside;
            memory.Release();
        }
    };
    std::thread a(work), b(work);
    a.join();
    b.join();
    EXPECT_EQ(maxInside, 1);
}
