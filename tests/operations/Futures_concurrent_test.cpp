// Futures of the reference scheduler with real threads. Every wait is bounded: a lost wake-up
// or a deadlock fails a test through its time limit instead of hanging the suite.
#include "ThreadPoolScheduler.h"
#include "ThreadTestSupport.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using namespace thread_test;

namespace {
constexpr int kBoundMs = 10000;

class Nothing : public IFunctor {
public:
    void Execute() override {}
    WString Description() const override { return WString(); }
};

// Goes down the stack, then waits there for its cancellation; every frame notes its unwinding.
class Deep : public IFunctor {
public:
    void Execute() override { Descend(100); }
    WString Description() const override { return WString(u"deep"); }
    std::atomic<int> unwound{0};
    std::atomic<bool> atBottom{false};

private:
    struct Frame {
        std::atomic<int>& count;
        ~Frame() { ++count; }
    };
    void Descend(int depth) {
        Frame frame{unwound};
        if (depth > 0)
            return Descend(depth - 1);
        atBottom = true;
        // Bounded, so that a cancellation that never arrives ends in a failed test.
        for (int i = 0; i < 10000; ++i) {
            IFunctor::GetThreadPromise()->SetProgress(0.5f);
            IFunctor::CheckCancel();
            std::this_thread::sleep_for(1ms);
        }
    }
};

template <class F>
bool Eventually(F condition) {
    auto const until = std::chrono::steady_clock::now() + kBound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}
} // namespace

// Waiters block in Wait while the pool finishes the work: each must wake as its future ends.
TEST(FuturesConcurrent, WaitersWakeForEveryFinishedFuture) {
    SP<ThreadPoolScheduler> scheduler = new ThreadPoolScheduler(2);
    std::vector<SP<IFuture>> futures;
    std::vector<std::future<void>> waiters;
    std::atomic<int> over{0};
    for (int round = 0; round < 300; ++round)
        futures.push_back(scheduler->Schedule(new Nothing));
    for (int w = 0; w < 3; ++w) {
        waiters.push_back(Start([&] {
            for (auto const& future : futures)
                if (future->Wait(kBoundMs) == Async::Finished)
                    ++over;
        }));
    }
    for (auto& waiter : waiters)
        EXPECT_EQ(waiter.wait_for(kBound), std::future_status::ready);
    EXPECT_EQ(over.load(), 900);
}

// A cancellation from another thread reaches code a hundred frames down through CheckCancel,
// and the raise unwinds every frame.
TEST(FuturesConcurrent, ACancelReachesDeepCode) {
    SP<ThreadPoolScheduler> scheduler = new ThreadPoolScheduler(1);
    SP<Deep> deep = new Deep;
    SP<IFuture> future = scheduler->Schedule(deep);
    ASSERT_TRUE(Eventually([&] { return deep->atBottom.load(); }));
    EXPECT_EQ(future->Progress(), 0.5f);
    std::thread([&] { future->Cancel(); }).join();
    EXPECT_EQ(future->Wait(kBoundMs), Async::Cancelled);
    EXPECT_EQ(deep->unwound.load(), 101);
    EXPECT_EQ(future->GetError().Error(), 0) << "a cancellation is no failure";
    EXPECT_EQ(future->GetFunctor().get(), deep.get());
}
