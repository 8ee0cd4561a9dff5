#include <pthread.h>
#include <qv/platform/ThreadId.h>
#include <unistd.h>

namespace qv::platform::detail {

__thread std::uint32_t t_threadId __attribute__((tls_model("initial-exec"))) = 0;

namespace {
// The child of a fork runs on a thread with a new id, but inherits the cache of the thread
// that forked.
void ForgetThreadIdInChild() noexcept {
    t_threadId = 0;
}
[[maybe_unused]] int const atforkRegistered =
    pthread_atfork(nullptr, nullptr, ForgetThreadIdInChild);
} // namespace

std::uint32_t FetchCurrentThreadId() noexcept {
    t_threadId = static_cast<std::uint32_t>(gettid());
    return t_threadId;
}

} // namespace qv::platform::detail
