// A manual-reset event, what CreateEventW(manual reset) gives on Windows: once set it releases
// every waiter, present and future, until it is reset. Waits answer as WaitForSingleObject
// does: WAIT_OBJECT_0 when the event is set, WAIT_TIMEOUT (258) when the time ran out.
// The event is an object rather than a handle: it lives inside its owner and is closed by its
// destructor, so it has no copy.
#pragma once

#include <atomic>
#include <cstdint>

namespace qv::platform {

constexpr std::uint32_t WAIT_OBJECT_0 = 0;
constexpr std::uint32_t WAIT_TIMEOUT = 258;
constexpr std::uint32_t INFINITE = 0xFFFFFFFF;

class ManualResetEvent {
public:
    explicit ManualResetEvent(bool initiallySet = false) noexcept
        : m_state(initiallySet ? kSet : kReset) {}
    ManualResetEvent(ManualResetEvent const&) = delete;
    ManualResetEvent& operator=(ManualResetEvent const&) = delete;

    void Set() noexcept;
    void Reset() noexcept;
    bool IsSet() const noexcept { return m_state.load() == kSet; }
    // Waits until the event is set or the milliseconds have passed (INFINITE: no limit).
    std::uint32_t Wait(std::uint32_t milliseconds = INFINITE) noexcept;

private:
    // Reset with sleepers: Set must wake them. A plain reset needs no system call to set.
    static constexpr std::uint32_t kReset = 0, kSet = 1, kResetWithWaiters = 2;

    std::atomic<std::uint32_t> m_state;
};

} // namespace qv::platform
