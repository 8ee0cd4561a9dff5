// A task's state is one atomic word, so that Wait(0), which WaitForAll and WaitForAny call on
// every pass, is a single load. Transitions that two threads may race for (Queued to Running
// by a worker against Queued to Cancelled by Cancel; Running to Cancelling against the end of
// the work) are compare-and-swaps. The end of the work is published under the task's mutex
// and announced on its condition variable, which is where timed Waits sleep; checking the
// state under the same mutex before sleeping is what keeps a wake-up from being lost.
#include "ThreadPoolScheduler.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <qv/core/BError.h>
#include <thread>
#include <vector>

namespace {

class PoolTask : public IFuture, public IPromise {
public:
    explicit PoolTask(SP<IFunctor> functor) : m_functor(std::move(functor)) {}

    Async::Result Wait(int milliseconds) override {
        Async::Result state = State();
        if (Async::IsOver(state) || milliseconds == 0)
            return state;
        std::unique_lock lock(m_mutex);
        auto over = [this] { return Async::IsOver(State()); };
        // A negative time is INFINITE passed through an int.
        if (milliseconds < 0)
            m_ended.wait(lock, over);
        else if (!m_ended.wait_for(lock, std::chrono::milliseconds(milliseconds), over))
            return Async::Timeout;
        return State();
    }

    void Cancel() override {
        m_cancelled.store(true);
        int expected = Async::Queued;
        if (m_state.compare_exchange_strong(expected, Async::Cancelled)) {
            Announce();
            return;
        }
        expected = Async::Running;
        m_state.compare_exchange_strong(expected, Async::Cancelling);
    }

    BError GetError() override {
        std::lock_guard lock(m_mutex);
        return m_error;
    }

    float Progress() override { return m_progress.load(std::memory_order_relaxed); }
    SP<IFunctor> GetFunctor() override { return m_functor; }

    bool IsCancelled() override { return m_cancelled.load(std::memory_order_relaxed); }
    void SetProgress(float progress) override {
        m_progress.store(progress, std::memory_order_relaxed);
    }

    // Runs the functor on the calling worker, unless the task was cancelled before it started.
    void Run() {
        int expected = Async::Queued;
        if (!m_state.compare_exchange_strong(expected, Async::Running))
            return;
        IFunctor::SetThreadPromise(static_cast<IPromise*>(this));
        try {
            m_functor->Execute();
            m_progress.store(1.0f);
            End(Async::Finished, BError());
        } catch (BError const& error) {
            bool const stopped = error.Error() == BError::kUserStopsFunction && IsCancelled();
            End(stopped ? Async::Cancelled : Async::Failed, stopped ? BError() : error);
        } catch (...) {
            End(Async::Failed, BError(BError::kGeneralFailure));
        }
        IFunctor::SetThreadPromise(nullptr);
    }

private:
    Async::Result State() const { return static_cast<Async::Result>(m_state.load()); }

    void End(Async::Result result, BError const& error) {
        {
            std::lock_guard lock(m_mutex);
            m_error = error;
            m_state.store(result);
        }
        m_ended.notify_all();
    }

    // Wakes the timed waiters after a change of state made without the mutex.
    void Announce() {
        { std::lock_guard lock(m_mutex); }
        m_ended.notify_all();
    }

    SP<IFunctor> const m_functor;
    std::atomic<int> m_state{Async::Queued};
    std::atomic<bool> m_cancelled{false};
    std::atomic<float> m_progress{0.0f};
    std::mutex m_mutex;
    std::condition_variable m_ended;
    BError m_error;
};

} // namespace

struct ThreadPoolScheduler::State {
    std::mutex mutex;
    std::condition_variable work;
    std::deque<SP<PoolTask>> queue;
    bool closing = false;
    std::vector<std::thread> workers;

    void Serve() {
        for (;;) {
            SP<PoolTask> task;
            {
                std::unique_lock lock(mutex);
                work.wait(lock, [this] { return closing || !queue.empty(); });
                if (queue.empty())
                    return;
                task = std::move(queue.front());
                queue.pop_front();
            }
            task->Run();
        }
    }
};

ThreadPoolScheduler::ThreadPoolScheduler(unsigned int workers) : m_state(new State) {
    for (unsigned int i = 0; i < std::max(workers, 1u); ++i)
        m_state->workers.emplace_back([state = m_state.get()] { state->Serve(); });
}

ThreadPoolScheduler::~ThreadPoolScheduler() {
    std::deque<SP<PoolTask>> unstarted;
    {
        std::lock_guard lock(m_state->mutex);
        m_state->closing = true;
        unstarted.swap(m_state->queue);
    }
    m_state->work.notify_all();
    for (SP<PoolTask> const& task : unstarted)
        task->Cancel();
    for (std::thread& worker : m_state->workers)
        worker.join();
}

SP<IFuture> ThreadPoolScheduler::Schedule(SP<IFunctor> functor) {
    if (!functor)
        return nullptr;
    SP<PoolTask> task = new PoolTask(std::move(functor));
    {
        std::lock_guard lock(m_state->mutex);
        if (m_state->closing)
            return nullptr;
        m_state->queue.push_back(task);
    }
    m_state->work.notify_one();
    return SP<IFuture>(task);
}

unsigned int ThreadPoolScheduler::WorkerCount() const {
    return static_cast<unsigned int>(m_state->workers.size());
}
