#include <qv/platform/CriticalSection.h>

namespace qv::platform {

void EnterCriticalSection(CRITICAL_SECTION* section) {
    section->m_mutex.lock();
}

void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept {
    section->m_mutex.unlock();
}

bool TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept {
    return section->m_mutex.try_lock();
}

} // namespace qv::platform
