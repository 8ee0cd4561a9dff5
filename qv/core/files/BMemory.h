// BMemory: a reusable raw buffer with a lock. Allocate takes the lock and keeps it until
// Release, so that one user at a time works in the buffer; the owner may take it again. The
// buffer only grows, and its pages come from outside the general heap.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/core/Export.h>
#include <qv/platform/CriticalSection.h>

class QV_EXPORT BMemory {
public:
    BMemory() = default;
    // Waits for the lock and gives the buffer back.
    virtual ~BMemory();

    // n = 0: null, and no lock is taken. Otherwise takes the lock and keeps it, also on failure;
    // a buffer of at least n bytes is reused with its size and contents, a smaller one replaced.
    // Null (and size 0) when the system has no memory.
    void* Allocate(unsigned long long n);
    // Allocate(n), then n bytes copied from src when both are there.
    void* Duplicate(void const* src, unsigned long long n);
    // Gives up the lock once; the buffer stays. A thread that does not hold it changes nothing.
    void Release();

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
