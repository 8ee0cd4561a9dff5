#include <qv/operations/BCriticalSection.h>

QV_REGISTER_CLASSNAME(BCriticalSection);

BCriticalSection::BCriticalSection(qv::platform::CRITICAL_SECTION* section) : m_section(section) {
    if (m_section)
        qv::platform::EnterCriticalSection(m_section);
}

BCriticalSection::~BCriticalSection() {
    if (m_section)
        qv::platform::LeaveCriticalSection(m_section);
}
