#include <cerrno>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <qv/platform/Futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qv::platform {

namespace {
// The kernel reads the word as a plain 32-bit integer; std::atomic<std::uint32_t> is exactly
// that in memory on every Linux ABI.
static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t));
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

long Futex(std::atomic<std::uint32_t>& word, int op, std::uint32_t value,
           timespec const* deadline) noexcept {
    return syscall(SYS_futex, reinterpret_cast<std::uint32_t*>(&word), op | FUTEX_PRIVATE_FLAG,
                   value, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
}
} // namespace

Deadline Deadline::After(std::uint32_t milliseconds) noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    long long nanoseconds = now.tv_nsec + static_cast<long long>(milliseconds % 1000) * 1000000;
    return {now.tv_sec + milliseconds / 1000 + nanoseconds / 1000000000,
            static_cast<long>(nanoseconds % 1000000000)};
}

bool FutexWait(std::atomic<std::uint32_t>& word, std::uint32_t expected,
               Deadline const* deadline) noexcept {
    // FUTEX_WAIT_BITSET takes an absolute time on the monotonic clock, so a wait that is
    // interrupted and repeated keeps its original limit.
    timespec limit{};
    if (deadline) {
        limit.tv_sec = static_cast<time_t>(deadline->seconds);
        limit.tv_nsec = deadline->nanoseconds;
    }
    if (Futex(word, FUTEX_WAIT_BITSET, expected, deadline ? &limit : nullptr) == 0)
        return true;
    return errno != ETIMEDOUT;
}

void FutexWake(std::atomic<std::uint32_t>& word, int count) noexcept {
    Futex(word, FUTEX_WAKE, static_cast<std::uint32_t>(count), nullptr);
}

} // namespace qv::platform
