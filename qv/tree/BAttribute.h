// BAttribute: what the application attaches to a node under a name. BSmartObj is a virtual
// base so that an attribute class may also derive from other smart-object interfaces while
// every SP to it shares one count.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT BAttribute : public virtual BSmartObj {
public:
    BAttribute() = default;
    BAttribute(BAttribute const&) : BSmartObj() {}
    BAttribute& operator=(BAttribute const&) { return *this; }

    // The attribute's name; a node holds at most one attribute of each name.
    virtual WString Name() const = 0;
};
