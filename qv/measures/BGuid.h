/// \file
/// BGuid: a smart object that holds a 128-bit identifier in the platform's layout, with the
/// platform's 36-character text form. See docs/measures.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/WindowsTypes.h>

/// One identifier. Not locked: one thread at a time changes it, any number may read it.
class QV_EXPORT BGuid : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BGuid)

    /// A new identifier, unique with high probability.
    BGuid();
    /// The 16 bytes of id.
    explicit BGuid(_GUID const& id);
    /// Parses the text form (either case, no braces); a null text or text that does not parse
    /// gives the all-zero identifier. Never raises.
    explicit BGuid(char16_t const* text);
    /// The same value, through its text form; a new object with its own identity.
    BGuid(BGuid const& other);
    /// Takes the value of other; the object identity stays.
    BGuid& operator=(BGuid const& other);

    _GUID Id() const { return m_guid; }
    /// The 36-character text, lower-case; empty on failure.
    WString ToString() const;
    /// The 128 bits compared.
    bool operator==(BGuid const& other) const;
    bool operator!=(BGuid const& other) const { return !(*this == other); }

private:
    _GUID m_guid{};
};
