/// \file
/// The state of a future, as Async::Result. The wait operations of IFuture depend only on the
/// numbers: 0, 2 and 4 mean the work is over and are ordered (4 outranks 2, 2 outranks 0);
/// 1 means a wait ended at its time limit; anything else means the work is not over.
///
/// The meaning of the three over-states and the names of the states that are not over are
/// this library's choice (docs/operations.md), which schedulers follow: 0 the work ran to its
/// end, 2 it was cancelled, 4 it failed. So waiting for several gives the worst outcome.
#pragma once

namespace Async {

enum Result : int {
    Finished = 0,       ///< over: the work ran to its end
    Timeout = 1,        ///< not over: the wait ended at its time limit
    FinishedState2 = 2, ///< over: the work was cancelled before its end
    Running = 3,        ///< not over: the work runs
    FinishedState4 = 4, ///< over: the work failed
    Queued = 5,         ///< not over: the work waits for a thread
    Cancelling = 6,     ///< not over: cancellation was asked for, the work still runs

    Cancelled = FinishedState2,
    Failed = FinishedState4,
};

/// True for the three states that say the work is over.
constexpr bool IsOver(Result result) {
    return result == Finished || result == FinishedState2 || result == FinishedState4;
}

} // namespace Async
