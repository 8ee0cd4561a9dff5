// qvprogress: a long computation split into tasks on the reference scheduler, each reporting
// its progress through a BProgressMapping to the application's dispatcher, and cancelled from
// another thread part-way. Run with --full to let it finish.
//
// The work counts the primes below 2^20 by trial division, in eight tasks of 2^17 numbers.
// The main thread waits for all of them with a promise of its own; a watcher thread cancels
// that promise when 40 % is reported, and the wait passes the cancellation on to every task,
// where IFunctor::CheckCancel stops the loop at its next update.
#include "ThreadPoolScheduler.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <qv/qvcore.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr unsigned long long kTaskNumbers = 1ull << 17;
constexpr unsigned int kTasks = 8;
constexpr unsigned long long kUnitsPerTask = 100;

// The application's dispatcher: it adds up the progress units that the tasks' mappings send
// and draws a line for every tenth of the whole. Tasks send from the pool's threads, so the
// sum is atomic and drawing is serialised.
class ConsoleDispatcher : public BDispatcher {
public:
    bool Send(unsigned int message, unsigned long long param1, unsigned long long) override {
        if (message != MSG_PROGRESS_STEP)
            return false;
        unsigned long long const before = m_units.fetch_add(param1);
        unsigned long long const tenthBefore = before * 10 / (kUnitsPerTask * kTasks);
        unsigned long long const tenthAfter = (before + param1) * 10 / (kUnitsPerTask * kTasks);
        std::lock_guard lock(m_print);
        for (unsigned long long tenth = tenthBefore + 1; tenth <= tenthAfter; ++tenth)
            std::printf("progress %3llu %%\n", tenth * 10);
        return true;
    }
    bool Post(unsigned int message, unsigned long long param1, unsigned long long param2) override {
        return Send(message, param1, param2);
    }
    unsigned long ThreadId() override { return m_thread; }
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }

    unsigned long long Percent() const { return m_units.load() * 100 / (kUnitsPerTask * kTasks); }

private:
    std::atomic<unsigned long long> m_units{0};
    std::mutex m_print;
    // The library numbers threads by their kernel thread ids, as the dispatcher must too.
    unsigned long m_thread = static_cast<unsigned long>(::gettid());
};

bool IsPrime(unsigned long long n) {
    if (n < 2)
        return false;
    for (unsigned long long d = 2; d * d <= n; ++d)
        if (n % d == 0)
            return false;
    return true;
}

class CountPrimes : public IFunctor {
public:
    explicit CountPrimes(unsigned long long first) : m_first(first) {}

    void Execute() override {
        BProgressMapping progress(kTaskNumbers, kUnitsPerTask);
        for (unsigned long long n = m_first; n < m_first + kTaskNumbers; ++n) {
            if (IsPrime(n))
                ++m_count;
            // An update comes every 50 to 100 ms whatever a number costs: the natural place
            // to ask whether to stop.
            if (progress.Next(1)) {
                IFunctor::GetThreadPromise()->SetProgress(static_cast<float>(progress.Step()) /
                                                          kTaskNumbers);
                IFunctor::CheckCancel();
            }
        }
    }
    WString Description() const override { return WString(u"counting primes"); }

    unsigned long long Count() const { return m_count; }

private:
    unsigned long long const m_first;
    unsigned long long m_count = 0;
};

char const* Outcome(Async::Result result) {
    switch (result) {
    case Async::Finished:
        return "finished";
    case Async::Cancelled:
        return "cancelled";
    case Async::Failed:
        return "failed";
    default:
        return "not over";
    }
}

} // namespace

int main(int argc, char** argv) {
    bool const full = argc > 1 && std::strcmp(argv[1], "--full") == 0;
    SP<ConsoleDispatcher> dispatcher = new ConsoleDispatcher;
    BDispatcher::RegisterDispatcher(dispatcher);

    SP<ThreadPoolScheduler> scheduler = new ThreadPoolScheduler(2);
    BArray<SP<IFuture>> futures;
    for (unsigned int i = 0; i < kTasks; ++i)
        futures.Add(scheduler->Schedule(new CountPrimes(i * kTaskNumbers)));

    SP<WaiterPromise> waiter = new WaiterPromise;
    std::thread watcher([&] {
        while (!full && dispatcher->Percent() < 40 && !waiter->IsCancelled())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        if (!full) {
            std::printf("cancelling at %llu %%\n", dispatcher->Percent());
            waiter->Cancel();
        }
    });
    Async::Result const result = IFuture::WaitForAll(futures, 600000, waiter);
    if (full)
        waiter->Cancel(); // lets the watcher go
    watcher.join();

    unsigned long long primes = 0;
    for (unsigned long long i = 0; i < futures.Count(); ++i) {
        Async::Result const task = futures[i]->Wait(0);
        auto* counter = dynamic_cast<CountPrimes*>(futures[i]->GetFunctor().get());
        std::printf("task %llu: %s, %llu primes\n", i, Outcome(task), counter->Count());
        primes += counter->Count();
    }
    std::printf("all: %s, %llu primes counted, %llu %% reported\n", Outcome(result), primes,
                dispatcher->Percent());
    BDispatcher::RegisterDispatcher(nullptr);
    return result == Async::Failed ? 1 : 0;
}
