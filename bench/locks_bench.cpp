// BLockRW against std::shared_mutex and pthread_rwlock_t, side by side in one run:
// - an uncontended LockR/UnlockR pair (for BLockRW the free-to-read-held transition each time),
// - a second reader's entry while another thread holds the shared side, alone and as a pair,
// - two later readers entering and leaving at once while a third thread holds the shared side,
// - read throughput of 2 threads reading under the lock at once,
// - a write after a read, which for BLockRW closes the readers' fast path each time.
#include <atomic>
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <qv/operations/BLockRW.h>
#include <shared_mutex>
#include <thread>

namespace {

struct QvLock {
    BLockRW lock;
    void Read() { lock.LockR(); }
    void Done() { lock.UnlockR(); }
    void Write() { lock.LockW(); }
    void DoneWriting() { lock.UnlockW(); }
};

struct StdLock {
    std::shared_mutex lock;
    void Read() { lock.lock_shared(); }
    void Done() { lock.unlock_shared(); }
    void Write() { lock.lock(); }
    void DoneWriting() { lock.unlock(); }
};

struct PosixLock {
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
    ~PosixLock() { pthread_rwlock_destroy(&lock); }
    void Read() { pthread_rwlock_rdlock(&lock); }
    void Done() { pthread_rwlock_unlock(&lock); }
    void Write() { pthread_rwlock_wrlock(&lock); }
    void DoneWriting() { pthread_rwlock_unlock(&lock); }
};

// Another thread holds the shared side for as long as this object lives, as the first reader
// of a group does; all entries measured with it in place are those of later readers.
template <class L>
class HeldByAnotherThread {
public:
    explicit HeldByAnotherThread(L& lock)
        : m_holder([&] {
              lock.Read();
              m_held = true;
              m_held.notify_one();
              m_release.wait(false);
              lock.Done();
          }) {
        m_held.wait(false);
    }
    ~HeldByAnotherThread() {
        m_release = true;
        m_release.notify_one();
        m_holder.join();
    }

private:
    std::atomic<bool> m_held{false}, m_release{false};
    std::thread m_holder;
};

template <class L>
void UncontendedPair(benchmark::State& state) {
    L lock;
    for (auto _ : state) {
        lock.Read();
        lock.Done();
    }
}

// Entries only: the matching releases run after the timed loop.
template <class L>
void SecondReaderEntry(benchmark::State& state) {
    L lock;
    HeldByAnotherThread<L> held(lock);
    for (auto _ : state)
        lock.Read();
    for (auto i = state.iterations(); i > 0; --i)
        lock.Done();
}

template <class L>
void SecondReaderPair(benchmark::State& state) {
    L lock;
    HeldByAnotherThread<L> held(lock);
    for (auto _ : state) {
        lock.Read();
        lock.Done();
    }
}

// Two threads enter and leave while a third holds the shared side: later readers contending
// for the count, without any first-reader transitions.
template <class L>
void SecondReadersContending(benchmark::State& state) {
    static L lock;
    static HeldByAnotherThread<L> held(lock);
    for (auto _ : state) {
        lock.Read();
        lock.Done();
    }
}

template <class L>
void ReadThroughput(benchmark::State& state) {
    static L lock;
    static long long value = 1;
    long long sum = 0;
    for (auto _ : state) {
        lock.Read();
        sum += value;
        lock.Done();
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations());
}

// What the readers' fast path costs a writer: each write after reads has to close the path
// (a process-wide barrier and a walk over the threads' reader slots), and the next read opens
// it again.
template <class L>
void WriteAfterRead(benchmark::State& state) {
    L lock;
    for (auto _ : state) {
        lock.Read();
        lock.Done();
        lock.Write();
        lock.DoneWriting();
    }
}

} // namespace

BENCHMARK(UncontendedPair<QvLock>)->Name("UncontendedPair/BLockRW");
BENCHMARK(UncontendedPair<StdLock>)->Name("UncontendedPair/std::shared_mutex");
BENCHMARK(UncontendedPair<PosixLock>)->Name("UncontendedPair/pthread_rwlock_t");
BENCHMARK(SecondReaderEntry<QvLock>)->Name("SecondReaderEntry/BLockRW");
BENCHMARK(SecondReaderEntry<StdLock>)->Name("SecondReaderEntry/std::shared_mutex");
BENCHMARK(SecondReaderEntry<PosixLock>)->Name("SecondReaderEntry/pthread_rwlock_t");
BENCHMARK(SecondReaderPair<QvLock>)->Name("SecondReaderPair/BLockRW");
BENCHMARK(SecondReaderPair<StdLock>)->Name("SecondReaderPair/std::shared_mutex");
BENCHMARK(SecondReaderPair<PosixLock>)->Name("SecondReaderPair/pthread_rwlock_t");
BENCHMARK(SecondReadersContending<QvLock>)
    ->Name("SecondReadersContending/BLockRW")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(SecondReadersContending<StdLock>)
    ->Name("SecondReadersContending/std::shared_mutex")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(SecondReadersContending<PosixLock>)
    ->Name("SecondReadersContending/pthread_rwlock_t")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(ReadThroughput<QvLock>)->Name("ReadThroughput/BLockRW")->Threads(2)->UseRealTime();
BENCHMARK(ReadThroughput<StdLock>)
    ->Name("ReadThroughput/std::shared_mutex")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(ReadThroughput<PosixLock>)
    ->Name("ReadThroughput/pthread_rwlock_t")
    ->Threads(2)
    ->UseRealTime();
BENCHMARK(WriteAfterRead<QvLock>)->Name("WriteAfterRead/BLockRW");
BENCHMARK(WriteAfterRead<StdLock>)->Name("WriteAfterRead/std::shared_mutex");
BENCHMARK(WriteAfterRead<PosixLock>)->Name("WriteAfterRead/pthread_rwlock_t");
