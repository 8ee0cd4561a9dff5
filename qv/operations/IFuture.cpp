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
} // namespace

Async::Result IFuture::WaitForAll(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                  SP<IPromise> promise) {
    if (futures.Count() == 0)
        return Async::Finished;
    std::uint64_t const deadline = qv::platform::GetTickCount64() + milliseconds;
    for (;;) {
        int highest = Async::Finished;
        bool seen = false;
        bool allOver = true;
        float progress = 0.0f;
        for (unsigned long long i = 0; i < futures.Count(); ++i) {
            IFuture* future = futures[i].get();
            if (!future)
                continue;
            seen = true;
            if (Cancelled(promise))
                future->Cancel();
            progress = std::max(progress, future->Progress());
            Async::Result const result = future->Wait(0);
            highest = std::max(highest, static_cast<int>(result));
            if (!Async::IsOver(result))
                allOver = false;
        }
        if (!seen)
            return Async::FinishedState4;
        if (Cancelled(promise))
            promise->SetProgress(progress);
        if (allOver)
            return static_cast<Async::Result>(highest);
        if (qv::platform::GetTickCount64() >= deadline)
            return Async::Timeout;
        qv::platform::Sleep(kPollInterval);
    }
}

Async::Result IFuture::WaitForAny(BArray<SP<IFuture>> futures, unsigned int milliseconds,
                                  SP<IPromise> promise) {
    if (futures.Count() == 0)
        return Async::Finished;
    std::uint64_t const deadline = qv::platform::GetTickCount64() + milliseconds;
    for (;;) {
        bool seen = false;
        float progress = 0.0f;
        for (unsigned long long i = 0; i < futures.Count(); ++i) {
            IFuture* future = futures[i].get();
            if (!future)
                continue;
            seen = true;
            if (Cancelled(promise))
                future->Cancel();
            progress = std::min(progress, future->Progress());
            Async::Result const result = future->Wait(0);
            if (Async::IsOver(result))
                return result;
        }
        if (!seen)
            return Async::FinishedState4;
        if (promise)
            promise->SetProgress(progress);
        if (qv::platform::GetTickCount64() >= deadline)
            return Async::Timeout;
        qv::platform::Sleep(kPollInterval);
    }
}
