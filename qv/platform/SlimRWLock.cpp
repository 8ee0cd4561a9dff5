#include <climits>
#include <qv/platform/Futex.h>
#include <qv/platform/SlimRWLock.h>

namespace qv::platform {

namespace {
constexpr std::uint32_t kExclusive = 1;
constexpr std::uint32_t kWaiters = 2;
constexpr std::uint32_t kShared = 4;

bool SharedFree(std::uint32_t state) noexcept {
    return (state & kExclusive) == 0;
}
bool ExclusiveFree(std::uint32_t state) noexcept {
    return (state & ~kWaiters) == 0;
}

// One attempt at the transition; false when the lock is not free for it.
bool TryAcquire(SRWLOCK& lock, bool (*isFree)(std::uint32_t), std::uint32_t add) noexcept {
    std::uint32_t state = lock.m_state.load(std::memory_order_relaxed);
    while (isFree(state)) {
        if (lock.m_state.compare_exchange_weak(state, state + add, std::memory_order_acquire,
                                               std::memory_order_relaxed))
            return true;
    }
    return false;
}

// Takes the lock, sleeping while it is not free. A sleeper first marks the word, so that the
// release knows to wake it.
void Acquire(SRWLOCK& lock, bool (*isFree)(std::uint32_t), std::uint32_t add) noexcept {
    std::uint32_t state = lock.m_state.load(std::memory_order_relaxed);
    for (;;) {
        if (isFree(state)) {
            if (lock.m_state.compare_exchange_weak(state, state + add, std::memory_order_acquire,
                                                   std::memory_order_relaxed))
                return;
            continue;
        }
        if ((state & kWaiters) == 0 &&
            !lock.m_state.compare_exchange_weak(state, state | kWaiters, std::memory_order_relaxed))
            continue;
        FutexWait(lock.m_state, state | kWaiters);
        state = lock.m_state.load(std::memory_order_relaxed);
    }
}

// The release that leaves the lock free clears the mark and wakes every sleeper; those that
// lose the race for the lock mark the word again and go back to sleep. If a thread takes the
// lock between the two steps, the mark stays and its own release does the waking.
void Release(SRWLOCK& lock, std::uint32_t sub) noexcept {
    std::uint32_t const before = lock.m_state.fetch_sub(sub, std::memory_order_release);
    std::uint32_t marked = kWaiters;
    if (before == (sub | kWaiters) &&
        lock.m_state.compare_exchange_strong(marked, 0, std::memory_order_relaxed))
        FutexWake(lock.m_state, INT_MAX);
}
} // namespace

void InitializeSRWLock(SRWLOCK& lock) noexcept {
    lock.m_state.store(0);
}

void AcquireSRWLockShared(SRWLOCK& lock) noexcept {
    Acquire(lock, SharedFree, kShared);
}

void ReleaseSRWLockShared(SRWLOCK& lock) noexcept {
    Release(lock, kShared);
}

void AcquireSRWLockExclusive(SRWLOCK& lock) noexcept {
    Acquire(lock, ExclusiveFree, kExclusive);
}

void ReleaseSRWLockExclusive(SRWLOCK& lock) noexcept {
    Release(lock, kExclusive);
}

bool TryAcquireSRWLockShared(SRWLOCK& lock) noexcept {
    return TryAcquire(lock, SharedFree, kShared);
}

bool TryAcquireSRWLockExclusive(SRWLOCK& lock) noexcept {
    return TryAcquire(lock, ExclusiveFree, kExclusive);
}

} // namespace qv::platform
