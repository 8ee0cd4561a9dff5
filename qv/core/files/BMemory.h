// BMemory: a reusable raw buffer with a lock. Allocate takes the lock and keeps it until
// Release, so that one user at a time works in the buffer; the owner may take it again. The
// buffer only grows, and its pages come from outside the general heap.
#pragma once

#include <condition_variable>
#include <mutex>
#include <qv/core/Export.h>
#include <thread>

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

    // A critical section: recursive for its owner, and a Release by another thread is ignored
    // rather than undefined. To be replaced by the platform's critical section once it exists.
    std::mutex m_mutex;
    std::condition_variable m_free;
    std::thread::id m_owner;
    unsigned m_depth = 0;
};
