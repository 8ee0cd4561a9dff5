// Progress and futures, side by side in one run:
// - a loop step that reports nothing: a bare loop, the same loop with a BProgressMapping step,
//   and with a std::atomic counter increment (what a shared progress counter would cost);
//   1024 steps an iteration, figures per step;
// - one poll of 10,000 futures of the reference scheduler through IFuture::WaitForAll, all
//   finished, and all unfinished with a limit of 0 (one pass, then Timeout), against a poll
//   of as many std::future by wait_for(0).
#include "ThreadPoolScheduler.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <future>
#include <qv/operations/BProgressMapping.h>
#include <qv/operations/IFuture.h>
#include <thread>
#include <vector>

namespace {

constexpr unsigned long long kStepsPerIteration = 1024;
constexpr int kFutures = 10000;

void BM_Step_BareLoop(benchmark::State& state) {
    for (auto _ : state) {
        for (unsigned long long i = 0; i < kStepsPerIteration; ++i)
            benchmark::DoNotOptimize(i);
    }
    state.SetItemsProcessed(state.iterations() * kStepsPerIteration);
}
BENCHMARK(BM_Step_BareLoop);

void BM_Step_BProgressMapping(benchmark::State& state) {
    // No dispatcher is registered: an update costs its tick read, and the stride soon grows
    // so large that updates are rare, as in a real loop.
    BProgressMapping mapping(~0ull, 100);
    for (auto _ : state) {
        for (unsigned long long i = 0; i < kStepsPerIteration; ++i) {
            benchmark::DoNotOptimize(i);
            mapping.Next(1);
        }
    }
    benchmark::DoNotOptimize(mapping.Step());
    state.SetItemsProcessed(state.iterations() * kStepsPerIteration);
}
BENCHMARK(BM_Step_BProgressMapping);

void BM_Step_AtomicCounter(benchmark::State& state) {
    std::atomic<unsigned long long> counter{0};
    for (auto _ : state) {
        for (unsigned long long i = 0; i < kStepsPerIteration; ++i) {
            benchmark::DoNotOptimize(i);
            ++counter;
        }
    }
    benchmark::DoNotOptimize(counter.load());
    state.SetItemsProcessed(state.iterations() * kStepsPerIteration);
}
BENCHMARK(BM_Step_AtomicCounter);

// Work that waits for its gate: keeps the scheduler's only thread busy, so that everything
// queued behind it stays unfinished.
class Gate : public IFunctor {
public:
    void Execute() override {
        while (!open)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    WString Description() const override { return WString(); }
    std::atomic<bool> open{false};
};

class Nothing : public IFunctor {
public:
    void Execute() override {}
    WString Description() const override { return WString(); }
};

void WaitForAll(benchmark::State& state, bool finished) {
    SP<ThreadPoolScheduler> scheduler = new ThreadPoolScheduler(1);
    SP<Gate> gate = new Gate;
    SP<IFuture> blocker = scheduler->Schedule(gate);
    BArray<SP<IFuture>> futures(kFutures);
    for (int i = 0; i < kFutures; ++i)
        futures.Add(scheduler->Schedule(new Nothing));
    if (finished) {
        gate->open = true;
        IFuture::WaitForAll(futures, 60000, nullptr);
    }
    Async::Result const expected = finished ? Async::Finished : Async::Timeout;
    for (auto _ : state) {
        if (IFuture::WaitForAll(futures, 0, nullptr) != expected)
            state.SkipWithError("unexpected state");
    }
    state.SetItemsProcessed(state.iterations() * kFutures);
    gate->open = true;
}

void BM_WaitForAll_FinishedFutures(benchmark::State& state) {
    WaitForAll(state, true);
}
BENCHMARK(BM_WaitForAll_FinishedFutures)->Unit(benchmark::kMicrosecond);

void BM_WaitForAll_UnfinishedFutures(benchmark::State& state) {
    WaitForAll(state, false);
}
BENCHMARK(BM_WaitForAll_UnfinishedFutures)->Unit(benchmark::kMicrosecond);

void StdFutures(benchmark::State& state, bool finished) {
    std::vector<std::promise<void>> promises(kFutures);
    std::vector<std::future<void>> futures;
    for (auto& promise : promises) {
        futures.push_back(promise.get_future());
        if (finished)
            promise.set_value();
    }
    for (auto _ : state) {
        bool all = true;
        for (auto& future : futures)
            all &= future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        if (all != finished)
            state.SkipWithError("unexpected state");
    }
    state.SetItemsProcessed(state.iterations() * kFutures);
}

void BM_StdFutureWait_FinishedFutures(benchmark::State& state) {
    StdFutures(state, true);
}
BENCHMARK(BM_StdFutureWait_FinishedFutures)->Unit(benchmark::kMicrosecond);

void BM_StdFutureWait_UnfinishedFutures(benchmark::State& state) {
    StdFutures(state, false);
}
BENCHMARK(BM_StdFutureWait_UnfinishedFutures)->Unit(benchmark::kMicrosecond);

} // namespace
