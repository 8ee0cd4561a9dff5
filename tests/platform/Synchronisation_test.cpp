#include <chrono>
#include <gtest/gtest.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>

using namespace qv::platform;
using namespace std::chrono_literals;

TEST(ManualResetEvent, StaysSetForEveryWaitUntilResetThenTimesOut) {
    ManualResetEvent event;
    event.Set();
    EXPECT_EQ(event.Wait(), WAIT_OBJECT_0);
    EXPECT_EQ(event.Wait(0), WAIT_OBJECT_0);
    event.Reset();
    event.Reset();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(event.Wait(20), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
}

TEST(SlimRWLock, SharedHoldsCountAndKeepTheExclusiveSideOut) {
    SRWLOCK lock;
    InitializeSRWLock(lock);
    AcquireSRWLockShared(lock);
    EXPECT_TRUE(TryAcquireSRWLockShared(lock));
    EXPECT_FALSE(TryAcquireSRWLockExclusive(lock));
    ReleaseSRWLockShared(lock);
    EXPECT_FALSE(TryAcquireSRWLockExclusive(lock));
    ReleaseSRWLockShared(lock);
    AcquireSRWLockExclusive(lock);
    EXPECT_FALSE(TryAcquireSRWLockExclusive(lock)) << "not recursive";
    EXPECT_FALSE(TryAcquireSRWLockShared(lock));
    ReleaseSRWLockExclusive(lock);
    EXPECT_TRUE(TryAcquireSRWLockShared(lock));
    ReleaseSRWLockShared(lock);
}
