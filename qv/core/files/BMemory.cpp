#include <cstring>
#include <qv/core/files/BMemory.h>
#include <qv/platform/VirtualMemory.h>

using namespace qv::platform;

BMemory::~BMemory() {
    Lock();
    FreeBuffer();
}

void BMemory::Lock() {
    std::unique_lock lock(m_mutex);
    auto const self = std::this_thread::get_id();
    m_free.wait(lock, [&] { return m_depth == 0 || m_owner == self; });
    m_owner = self;
    ++m_depth;
}

void BMemory::Release() {
    std::lock_guard lock(m_mutex);
    if (m_depth == 0 || m_owner != std::this_thread::get_id())
        return;
    if (--m_depth == 0) {
        m_owner = {};
        m_free.notify_one();
    }
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
