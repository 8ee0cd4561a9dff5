#include <cstring>
#include <qv/core/files/BMemory.h>
#include <qv/platform/ThreadId.h>
#include <qv/platform/VirtualMemory.h>

using namespace qv::platform;

BMemory::~BMemory() {
    Lock();
    FreeBuffer();
    // A critical section must be free when it goes: every hold of this thread is left.
    m_owner.store(0, std::memory_order_relaxed);
    for (; m_depth > 0; --m_depth)
        LeaveCriticalSection(&m_lock);
}

void BMemory::Lock() {
    EnterCriticalSection(&m_lock);
    m_owner.store(GetCurrentThreadId(), std::memory_order_relaxed);
    ++m_depth;
}

// Only the owner finds its own id in m_owner; another thread's view of it may be stale but is
// never its own id.
void BMemory::Release() {
    if (m_owner.load(std::memory_order_relaxed) != GetCurrentThreadId())
        return;
    if (--m_depth == 0)
        m_owner.store(0, std::memory_order_relaxed);
    LeaveCriticalSection(&m_lock);
}

void BMemory::FreeBuffer() {
    if (m_size != 0)
        VirtualFree(m_buffer, 0, MEM_RELEASE);
    m_buffer = nullptr;
    m_size = 0;
}

void* BMemory::Allocate(unsigned long long n) {
    if (n == 0)
        return nullptr;
    Lock();
    if (m_size < n) {
        FreeBuffer();
        m_buffer = VirtualAlloc(nullptr, n, MEM_COMMIT | MEM_TOP_DOWN, PAGE_READWRITE);
        m_size = m_buffer ? n : 0;
    }
    return m_buffer;
}

void* BMemory::Duplicate(void const* src, unsigned long long n) {
    void* buffer = Allocate(n);
    if (buffer && src)
        std::memcpy(buffer, src, n);
    return buffer;
}
