/// \file
/// BMemory: a reusable raw buffer with a lock. Allocate takes the lock and keeps it until
/// Release, so that one user at a time works in the buffer; the owner may take it again. The
/// buffer only grows, and its pages come from outside the general heap (docs/paths.md).
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/core/Export.h>
#include <qv/platform/CriticalSection.h>

/// Threads share one BMemory by pairing each Allocate (with n above 0) or Duplicate with one
/// Release: a second thread waits in Allocate until the holder has released as often as it
/// allocated. The buffer is borrowed: it stays the object's and holds until the next Allocate
/// that grows it, or the destructor. Not copyable; nothing throws.
class QV_EXPORT BMemory {
public:
    /// No buffer, size 0.
    BMemory() = default;
    /// Waits for the lock and gives the buffer back.
    virtual ~BMemory();

    /// \p n = 0: null, and no lock is taken. Otherwise takes the lock and keeps it, also on
    /// failure; a buffer of at least \p n bytes is reused with its size and contents, a
    /// smaller one replaced by one of \p n bytes, zero-filled. Null (and size 0, the old buffer
    /// gone) when the system has no memory.
    void* Allocate(unsigned long long n);
    /// Allocate(n), then \p n bytes copied from \p src when both are there.
    void* Duplicate(void const* src, unsigned long long n);
    /// Gives up the lock once; the buffer stays. A thread that does not hold it changes nothing.
    void Release();

    /// The bytes of the buffer, 0 without one: the largest size asked for since the last
    /// failure, not the last one.
    unsigned long long Size() const { return m_size; }

private:
    // Copies would make two owners of one buffer and one lock.
    BMemory(BMemory const&) = delete;
    BMemory& operator=(BMemory const&) = delete;

    void Lock();
    void FreeBuffer();

    void* m_buffer = nullptr;
    unsigned long long m_size = 0;

    // Recursive for its owner. The owner's id and depth let a Release by another thread be
    // ignored, where leaving a critical section one is not inside would be undefined.
    qv::platform::CRITICAL_SECTION m_lock;
    std::atomic<std::uint32_t> m_owner{0};
    unsigned m_depth = 0;
};
