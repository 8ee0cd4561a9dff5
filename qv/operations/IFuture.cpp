// The two waits poll: each pass asks every future once with Wait(0), then sleeps 10 ms, until
// the end condition holds or the deadline on the 64-bit tick has passed. There is always one
// pass, so a limit of 0 is one poll of every future. They take no lock and wait on no event:
// a future is asked only through its virtual operations.
#include <algorithm>
#include <qv/operations/IFunctor.h>
#include <qv/operations/IFuture.h>
#include <qv/platform/TickCount.h>

QV_REGISTER_CLASSNAME(IFuture);

namespace {
constexpr std::uint32_t kPollInterval = 10; // ms between two passes

// The waiter's promise, when it is there and cancelled: the futures are then told to cancel.
bool Cancelled(SP<IPromise> const& promise) {
    return promise && promise->IsCancelled();
}

// One pass: each future, in array order, that is not null is told to cancel while the waiter's
// promise is cancelled, then gives its progress and its state (in that order) to `take`, which
// answers true to end the pass there. False when every entry was null.
template <class Take>
bool Pass(BArray<SP<IFuture>> const& futures, SP<IPromise> const& promise, Take take) {
    bool seen = false;
    for (unsigned long long i = 0; i < futures.Count(); ++i) {
        IFuture* future = futures[i].get();
        if (!future)
            continue;
        seen = true;
        if (Cancelled(promise))
            future->Cancel();
        float const progress = future->Progress();
        if (take(progress, future->Wait(0)))
            break;
    }
    return seen;
}

// After a pass that did not end the wait: false once the deadline has come, otherwise true
// after the poll interval.
bool SleepUntilNextPass(std::uint64_t deadline) {
    if (qv::platform::GetTickCount64() >= deadline)
        return false;
    qv::platform::Sleep(kPollInterval);
    return true;
}
} // namespace

Async::Result IFuture::WaitForAll(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                  SP<IPromise> promise) {
    if (futures.Count() == 0)
        return Async::Finished;
    std::uint64_t const deadline = qv::platform::GetTickCount64() + milliseconds;
    do {
        int highest = Async::Finished;
        bool allOver = true;
        float largest = 0.0f;
        bool const seen = Pass(futures, promise, [&](float progress, Async::Result result) {
            largest = std::max(largest, progress);
            highest = std::max(highest, static_cast<int>(result));
            allOver = allOver && Async::IsOver(result);
            return false;
        });
        if (!seen)
            return Async::FinishedState4;
        if (Cancelled(promise))
            promise->SetProgress(largest);
        if (allOver)
            return static_cast<Async::Result>(highest);
    } while (SleepUntilNextPass(deadline));
    return Async::Timeout;
}

Async::Result IFuture::WaitForAny(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                  SP<IPromise> promise) {
    if (futures.Count() == 0)
        return Async::Finished;
    std::uint64_t const deadline = qv::platform::GetTickCount64() + milliseconds;
    do {
        // Starts at 0 and takes the smaller: for progress values from 0 up it stays 0, which
        // is what callers of this wait have always been handed.
        float smallest = 0.0f;
        bool over = false;
        Async::Result first = Async::Timeout;
        bool const seen = Pass(futures, promise, [&](float progress, Async::Result result) {
            smallest = std::min(smallest, progress);
            over = Async::IsOver(result);
            first = result;
            return over;
        });
        if (over)
            return first;
        if (!seen)
            return Async::FinishedState4;
        if (promise)
            promise->SetProgress(smallest);
    } while (SleepUntilNextPass(deadline));
    return Async::Timeout;
}
