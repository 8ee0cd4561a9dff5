// Slim reader/writer lock: SRWLOCK and its operations. Unlike std::shared_mutex and
// pthread_rwlock_t, the shared side belongs to no thread: any thread may release a shared hold
// that another took. BLockRW depends on that, since its first reader acquires the shared side
// on behalf of all readers and whichever reader leaves last gives it back.
//
// Not recursive, not fair; waiting threads sleep on a futex. A lock is one 32-bit word:
// bit 0 is the exclusive hold, bit 1 says that threads sleep on the word, and the rest counts
// shared holds in steps of 4.
#pragma once

#include <atomic>
#include <cstdint>

namespace qv::platform {

struct SRWLOCK {
    std::atomic<std::uint32_t> m_state{0};
};

void InitializeSRWLock(SRWLOCK& lock) noexcept;
void AcquireSRWLockShared(SRWLOCK& lock) noexcept;
void ReleaseSRWLockShared(SRWLOCK& lock) noexcept;
void AcquireSRWLockExclusive(SRWLOCK& lock) noexcept;
void ReleaseSRWLockExclusive(SRWLOCK& lock) noexcept;
// Both return at once: true when the lock was taken. Neither is recursive.
bool TryAcquireSRWLockShared(SRWLOCK& lock) noexcept;
bool TryAcquireSRWLockExclusive(SRWLOCK& lock) noexcept;

} // namespace qv::platform
