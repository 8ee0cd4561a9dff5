// A scoped guard over a critical section that the caller owns: construction enters it,
// destruction leaves it. It is a smart object only by descent; it lives on the stack and its
// reference count plays no part. A copy would leave the section once more than it entered, so
// there is none. A null section makes a guard that guards nothing.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/platform/CriticalSection.h>

class QV_EXPORT BCriticalSection : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCriticalSection)

    explicit BCriticalSection(qv::platform::CRITICAL_SECTION* section);
    BCriticalSection(BCriticalSection const&) = delete;
    BCriticalSection& operator=(BCriticalSection const&) = delete;
    ~BCriticalSection() override;

private:
    qv::platform::CRITICAL_SECTION* m_section;
};
