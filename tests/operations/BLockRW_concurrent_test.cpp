// BLockRW with real threads. Every wait here is bounded: a lock that never comes free fails
// the test through a time-out instead of hanging the suite.
#include "ThreadTestSupport.h"

#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/BLockRW.h>
#include <qv/platform/ProcessWriteBuffers.h>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {
using namespace thread_test;

bool Blocked(std::future<void>& f) {
    return f.wait_for(kSettle) == std::future_status::timeout;
}
bool Finishes(std::future<void>& f) {
    return f.wait_for(kBound) == std::future_status::ready;
}
} // namespace

// Readers and writers share a structure guarded only by the lock. Each writer marks itself
// inside and changes a pair of values that readers check for consistency; a reader that ever
// sees the writer mark, or a torn pair, proves overlap. Readers also count themselves, which a
// writer checks is 0.
TEST(BLockRWConcurrent, ReadersNeverRunBesideAWriter) {
    BLockRW lock;
    std::atomic<int> writersInside{0}, readersInside{0};
    long long first = 0, second = 0;
    std::atomic<bool> overlap{false}, stop{false};
    std::vector<std::future<void>> threads;
    for (int i = 0; i < 3; ++i)
        threads.push_back(Start([&] {
            while (!stop) {
                {
                    BAutoLockR guard(lock);
                    ++readersInside;
                    overlap = overlap || writersInside.load() != 0 || first != -second;
                    --readersInside;
                }
                // Readers have precedence: without a gap now and then, writers would starve.
                std::this_thread::yield();
            }
        }));
    auto writer = [&] {
        for (int i = 0; i < 1000; ++i) {
            BAutoLockW guard(lock);
            if (writersInside.fetch_add(1) != 0 || readersInside.load() != 0)
                overlap = true;
            ++first;
            std::this_thread::yield();
            --second;
            --writersInside;
        }
    };
    auto w1 = Start(writer), w2 = Start(writer);
    EXPECT_TRUE(Finishes(w1) && Finishes(w2));
    stop = true;
    for (auto& thread : threads)
        EXPECT_TRUE(Finishes(thread));
    EXPECT_FALSE(overlap);
    EXPECT_EQ(first, 2000);
}

// The first reader of a group waits for the shared side behind a writer; a second reader that
// arrives then must wait too, not run on the first reader's pending count.
TEST(BLockRWConcurrent, ALaterReaderWaitsWhileTheFirstReaderWaitsBehindAWriter) {
    BLockRW lock;
    lock.LockW();
    auto read = [&] { BAutoLockR guard(lock); };
    auto r1 = Start(read);
    ASSERT_TRUE(Blocked(r1));
    auto r2 = Start(read);
    EXPECT_TRUE(Blocked(r2));
    lock.UnlockW();
    EXPECT_TRUE(Finishes(r1));
    EXPECT_TRUE(Finishes(r2));
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

// Reads counted through the threads' own slots: left on another thread than the one that
// entered them, even after that thread has ended, they keep a writer out until the last one
// goes; and the path opens again for the next group.
TEST(BLockRWConcurrent, ReadsLeftOnAnotherThreadCountUntilTheLastOneGoes) {
    BLockRW lock;
    for (int round = 0; round < 2; ++round) {
        auto enter = Start([&] {
            lock.LockR();
            lock.LockR();
        });
        ASSERT_TRUE(Finishes(enter));
        lock.UnlockR();
        std::atomic<bool> written{false};
        auto writer = Start([&] {
            BAutoLockW guard(lock);
            written = true;
        });
        EXPECT_TRUE(Blocked(writer)) << "round " << round;
        lock.UnlockR();
        EXPECT_TRUE(Finishes(writer));
        EXPECT_TRUE(written);
    }
}

// Readers have precedence: while readers overlap, a waiting writer stays out.
TEST(BLockRWConcurrent, OverlappingReadersKeepAWriterOut) {
    BLockRW lock;
    lock.LockR();
    std::atomic<bool> written{false};
    auto writer = Start([&] {
        BAutoLockW guard(lock);
        written = true;
    });
    ASSERT_TRUE(Blocked(writer));
    // A new reader enters beside the first although a writer waits.
    auto reader = Start([&] { BAutoLockR guard(lock); });
    EXPECT_TRUE(Finishes(reader));
    EXPECT_FALSE(written);
    lock.UnlockR();
    EXPECT_TRUE(Finishes(writer));
}

// A barrier the kernel refuses after registration must not go unnoticed: the closing writer
// still gets a barrier, and no lock opens the fast path again. Shutting is for good, so the
// test runs in a child process.
TEST(BLockRWConcurrent, AFailedBarrierShutsTheFastPathForGood) {
    std::string const verdict = RunBounded([] {
        if (!qv::platform::CanFlushProcessWriteBuffers())
            return true; // the kernel offers no barrier: the path never opens anyway
        BLockRW lock;
        std::atomic<int> inside{0};
        auto reader = Start([&] {
            for (int i = 0; i < 20000; ++i) {
                BAutoLockR read(lock);
                ++inside;
                --inside;
            }
        });
        qv::platform::FailNextProcessWriteBufferFlush();
        bool alone = true;
        for (int i = 0; i < 200; ++i) {
            BAutoLockW write(lock);
            alone = alone && inside.load() == 0;
        }
        reader.get();
        return alone && !qv::platform::CanFlushProcessWriteBuffers();
    });
    EXPECT_EQ(verdict, "");
}

// A fork may catch a reader inside its slot update. The child's writers must not wait for
// that update, which no thread of the child will finish, and the child opens no fast path.
// A fork may also catch the reader registering the process for barriers: the child must not
// wait for that registration either (it did, in a guarded static, about one child in three).
TEST(BLockRWConcurrent, AChildForkedAmidFastReadsCanWrite) {
    BLockRW lock;
    std::atomic<bool> stop{false};
    auto reader = Start([&] {
        while (!stop.load(std::memory_order_relaxed)) {
            lock.LockR();
            lock.UnlockR();
        }
    });
    std::string verdict;
    for (int i = 0; i < 20 && verdict.empty(); ++i)
        verdict = RunBounded(
            [&] {
                // The reader may have held a read at the fork, which then stays held here.
                if (lock.TryLockW())
                    lock.UnlockW();
                return !qv::platform::CanFlushProcessWriteBuffers();
            },
            std::chrono::milliseconds(5000));
    stop = true;
    reader.get();
    EXPECT_EQ(verdict, "");
}
