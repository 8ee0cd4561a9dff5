// The critical section of Windows (CRITICAL_SECTION, the structure that Windows also calls
// _RTL_CRITICAL_SECTION): a recursive mutex of one process. The owner of the structure
// creates and destroys it with the object itself, so InitializeCriticalSection and
// DeleteCriticalSection have no counterpart here.
#pragma once

#include <mutex>

namespace qv::platform {

struct CRITICAL_SECTION {
    std::recursive_mutex m_mutex;
};

// Enters, also when the calling thread is inside already; a failure of the system's mutex
// (a recursion too deep to count) is raised as std::system_error.
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;
// Enters if no other thread is inside; true when it did.
bool TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept;

} // namespace qv::platform
