#include <climits>
#include <qv/platform/Futex.h>
#include <qv/platform/ManualResetEvent.h>

namespace qv::platform {

void ManualResetEvent::Set() noexcept {
    if (m_state.exchange(kSet) == kResetWithWaiters)
        FutexWake(m_state, INT_MAX);
}

void ManualResetEvent::Reset() noexcept {
    // A reset event stays as it is, sleepers included.
    std::uint32_t expected = kSet;
    m_state.compare_exchange_strong(expected, kReset);
}

std::uint32_t ManualResetEvent::Wait(std::uint32_t milliseconds) noexcept {
    std::uint32_t state = m_state.load();
    if (state == kSet)
        return WAIT_OBJECT_0;
    Deadline const deadline = Deadline::After(milliseconds == INFINITE ? 0 : milliseconds);
    Deadline const* limit = milliseconds == INFINITE ? nullptr : &deadline;
    for (;;) {
        if (state == kSet)
            return WAIT_OBJECT_0;
        if (state == kReset && !m_state.compare_exchange_weak(state, kResetWithWaiters))
            continue;
        if (!FutexWait(m_state, kResetWithWaiters, limit))
            return m_state.load() == kSet ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
        state = m_state.load();
    }
}

} // namespace qv::platform
