/// \file
/// BCriticalSection: a scoped guard over a critical section that the caller owns.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/platform/CriticalSection.h>

/// Construction enters the section, destruction leaves it. It is a smart object only by
/// descent; it lives on the stack and its reference count plays no part. A copy would leave
/// the section once more than it entered, so there is none. The section is recursive: a
/// thread may nest guards over it.
class QV_EXPORT BCriticalSection : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCriticalSection)

    /// Enters section, waiting as long as it takes; the section is borrowed and must outlive
    /// the guard. A null section makes a guard that guards nothing.
    explicit BCriticalSection(qv::platform::CRITICAL_SECTION* section);
    BCriticalSection(BCriticalSection const&) = delete;
    BCriticalSection& operator=(BCriticalSection const&) = delete;
    /// Leaves the section.
    ~BCriticalSection() override;

private:
    qv::platform::CRITICAL_SECTION* m_section;
};
