#include "ThreadTestSupport.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <qv/platform/CriticalSection.h>
#include <qv/platform/ManualResetEvent.h>
#include <qv/platform/SlimRWLock.h>
#include <qv/platform/ThreadId.h>
#include <qv/platform/ThreadLocalStorage.h>
#include <qv/platform/ThreadName.h>
#include <string>
#include <thread>

using namespace qv::platform;
using namespace std::chrono_literals;

using namespace thread_test;

// The id names the thread for the kernel: another thread can find it under /proc by it.
TEST(GetCurrentThreadIdConcurrent, EachThreadHasItsOwnIdKnownToTheKernel) {
    std::uint32_t const mine = GetCurrentThreadId();
    std::promise<std::uint32_t> id;
    std::promise<void> named;
    auto other = Start([&] {
        id.set_value(GetCurrentThreadId());
        named.get_future().wait();
    });
    std::uint32_t const theirs = id.get_future().get();
    EXPECT_NE(theirs, mine);
    ASSERT_TRUE(NameThread("qv-tid-probe", theirs));
    std::ifstream comm("/proc/self/task/" + std::to_string(theirs) + "/comm");
    std::string name;
    std::getline(comm, name);
    EXPECT_EQ(name, "qv-tid-probe");
    named.set_value();
    other.get();
}

TEST(ManualResetEventConcurrent, SetReleasesEveryWaiter) {
    ManualResetEvent event;
    std::atomic<int> released{0};
    auto wait = [&] {
        EXPECT_EQ(event.Wait(), WAIT_OBJECT_0);
        ++released;
    };
    auto a = Start(wait), b = Start(wait);
    std::this_thread::sleep_for(kSettle);
    EXPECT_EQ(released.load(), 0);
    event.Set();
    EXPECT_EQ(a.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(b.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(released.load(), 2);
}

// The property that std::shared_mutex lacks: the shared side taken on one thread is given
// back on another, and a writer waiting for it gets in then.
TEST(SlimRWLockConcurrent, SharedSideReleasedByAnotherThread) {
    SRWLOCK lock;
    InitializeSRWLock(lock);
    AcquireSRWLockShared(lock);
    std::atomic<bool> written{false};
    auto writer = Start([&] {
        AcquireSRWLockExclusive(lock);
        written = true;
        ReleaseSRWLockExclusive(lock);
    });
    EXPECT_EQ(writer.wait_for(kSettle), std::future_status::timeout);
    Start([&] { ReleaseSRWLockShared(lock); }).get();
    EXPECT_EQ(writer.wait_for(kBound), std::future_status::ready);
    EXPECT_TRUE(written);
}

// Recursive for its owner, closed to every other thread until the owner has left it.
TEST(CriticalSectionConcurrent, IsRecursiveAndKeepsOtherThreadsOut) {
    CRITICAL_SECTION section;
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    LeaveCriticalSection(&section);
    Start([&] { EXPECT_FALSE(TryEnterCriticalSection(&section)); }).get();
    LeaveCriticalSection(&section);
    Start([&] {
        EXPECT_TRUE(TryEnterCriticalSection(&section));
        LeaveCriticalSection(&section);
    }).get();
}

// Slots start null, and each thread has its own value; a freed slot is refused.
TEST(ThreadLocalStorageConcurrent, EachThreadHasItsOwnValue) {
    std::uint32_t const index = TlsAlloc();
    ASSERT_NE(index, TLS_OUT_OF_INDEXES);
    EXPECT_EQ(TlsGetValue(index), nullptr);
    int mine = 0;
    EXPECT_TRUE(TlsSetValue(index, &mine));
    Start([&] { EXPECT_EQ(TlsGetValue(index), nullptr); }).get();
    EXPECT_EQ(TlsGetValue(index), &mine);
    EXPECT_TRUE(TlsFree(index));
    EXPECT_FALSE(TlsFree(index));
    EXPECT_FALSE(TlsSetValue(TLS_OUT_OF_INDEXES, &mine));
}
