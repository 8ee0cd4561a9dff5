#include <cerrno>
#include <qv/platform/TickCount.h>
#include <sched.h>
#include <time.h>

namespace qv::platform {

std::uint64_t GetTickCount64() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000u +
           static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
}

std::uint32_t GetTickCount() noexcept {
    return static_cast<std::uint32_t>(GetTickCount64());
}

void Sleep(std::uint32_t milliseconds) noexcept {
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    // Against an absolute deadline, so that a signal that interrupts the sleep does not
    // stretch it.
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += static_cast<time_t>(milliseconds / 1000u);
    deadline.tv_nsec += static_cast<long>(milliseconds % 1000u) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_nsec -= 1000000000L;
        ++deadline.tv_sec;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

} // namespace qv::platform
