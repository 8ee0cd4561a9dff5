#include <chrono>
#include <gtest/gtest.h>
#include <qv/platform/CriticalSection.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>
#include <qv/platform/ThreadId.h>
#include <qv/platform/ThreadLocalStorage.h>
#include <unistd.h>

using namespace qv::platform;
using namespace std::chrono_literals;

TEST(GetCurrentThreadId, IsTheKernelsThreadId) {
    EXPECT_EQ(GetCurrentThreadId(), static_cast<std::uint32_t>(gettid()));
    EXPECT_NE(GetCurrentThreadId(), 0xFFFFFFFFu);
}

TEST(ManualResetEvent, StaysSetForEveryWaitUntilReset) {
    ManualResetEvent event;
    EXPECT_FALSE(event.IsSet());
    event.Set();
    EXPECT_EQ(event.Wait(), WAIT_OBJECT_0);
    EXPECT_EQ(event.Wait(0), WAIT_OBJECT_0);
    event.Reset();
    event.Reset();
    EXPECT_EQ(event.Wait(0), WAIT_TIMEOUT);
    EXPECT_TRUE(ManualResetEvent(true).IsSet());
}

TEST(ManualResetEvent, TimedWaitReportsTimeoutAfterItsTime) {
    ManualResetEvent event;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(event.Wait(20), 258u);
    auto const waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, 20ms);
    EXPECT_LT(waited, 2s);
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

TEST(CriticalSection, IsRecursive) {
    CRITICAL_SECTION section;
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    LeaveCriticalSection(&section);
    LeaveCriticalSection(&section);
}

TEST(ThreadLocalStorage, SlotsStartNullAndKeepTheirValue) {
    std::uint32_t const index = TlsAlloc();
    ASSERT_NE(index, TLS_OUT_OF_INDEXES);
    EXPECT_EQ(TlsGetValue(index), nullptr);
    int value = 0;
    EXPECT_TRUE(TlsSetValue(index, &value));
    EXPECT_EQ(TlsGetValue(index), &value);
    EXPECT_TRUE(TlsFree(index));
    EXPECT_FALSE(TlsFree(index));
    EXPECT_FALSE(TlsSetValue(TLS_OUT_OF_INDEXES, &value));
    EXPECT_EQ(TlsGetValue(TLS_OUT_OF_INDEXES), nullptr);
}
