// The promise slot is a C++ thread_local SP: constant-initialised to null, and destroyed with
// its thread, which gives the slot's reference up when the thread ends.
#include <qv/core/BError.h>
#include <qv/operations/IFunctor.h>
#include <utility>

QV_REGISTER_CLASSNAME(IFunctor);

namespace {
thread_local SP<IPromise> t_promise;
} // namespace

void IFunctor::SetThreadPromise(SP<IPromise> promise) {
    // The argument already holds its reference, so the new promise is referenced before the
    // old one is let go.
    t_promise = std::move(promise);
}

SP<IPromise> IFunctor::GetThreadPromise() {
    return t_promise;
}

bool IFunctor::IsCancelled() {
    IPromise* promise = t_promise.get();
    return promise && promise->IsCancelled();
}

void IFunctor::CheckCancel() {
    if (IsCancelled())
        throw BError(BError::kUserStopsFunction);
}
