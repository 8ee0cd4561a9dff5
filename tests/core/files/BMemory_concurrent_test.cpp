#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <qv/core/files/BMemory.h>
#include <thread>

// The buffer has one user at a time: a second thread waits in Allocate until the holder
// releases it.
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
