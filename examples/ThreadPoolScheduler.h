/// \file
/// A reference scheduler: a small pool of threads that implements IScheduler and IFuture the
/// way an application module would. Each scheduled functor becomes a task that is at once its
/// future (for whoever waits) and its promise (in the worker thread's slot while the functor
/// runs, so that IFunctor::CheckCancel inside it sees a cancellation).
///
/// States of a task: Async::Queued, then Async::Running (Async::Cancelling once cancelled
/// while it runs), then one of the three over-states: Async::Finished when the functor
/// returned, Async::Cancelled when it was cancelled before it ran or left by BError 25070
/// after a cancellation, Async::Failed when anything else left it (GetError tells what).
#pragma once

#include <atomic>
#include <memory>
#include <qv/operations/IPromise.h>
#include <qv/operations/IScheduler.h>

class ThreadPoolScheduler : public IScheduler {
public:
    /// Starts \p workers threads (at least one).
    explicit ThreadPoolScheduler(unsigned int workers);
    ThreadPoolScheduler(ThreadPoolScheduler const&) = delete;
    ThreadPoolScheduler& operator=(ThreadPoolScheduler const&) = delete;
    /// Cancels the tasks that have not started, lets the running ones end, joins the threads.
    ~ThreadPoolScheduler() override;

    /// Queues \p functor; null for a null functor. Any thread may schedule, a task included.
    SP<IFuture> Schedule(SP<IFunctor> functor) override;
    unsigned int WorkerCount() const override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The promise of a waiter: what it passes to IFuture::WaitForAll and WaitForAny so that
/// another thread can cancel the wait's futures, and where the wait leaves its progress.
class WaiterPromise : public IPromise {
public:
    bool IsCancelled() override { return m_cancelled.load(); }
    void SetProgress(float progress) override { m_progress.store(progress); }

    /// Cancels, from any thread; the next pass of a wait tells the futures to cancel.
    void Cancel() { m_cancelled.store(true); }
    /// The last progress that a wait left here.
    float Progress() const { return m_progress.load(); }

private:
    std::atomic<bool> m_cancelled{false};
    std::atomic<float> m_progress{0.0f};
};
