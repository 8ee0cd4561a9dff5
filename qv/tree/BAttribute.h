/// \file
/// BAttribute: what the application attaches to a node under a name. See docs/nodes.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

/// The application derives its attributes from this class; a node holds them by SP, one per
/// name (BNode::AddAttrib). BSmartObj is a virtual base so that an attribute class may also
/// derive from other smart-object interfaces while every SP to it shares one count.
class QV_EXPORT BAttribute : public virtual BSmartObj {
public:
    /// @name Construction and assignment copy nothing of their own (a copy starts a count).
    ///@{
    BAttribute() = default;
    BAttribute(BAttribute const&) : BSmartObj() {}
    BAttribute& operator=(BAttribute const&) { return *this; }
    ///@}

    /// The attribute's name; a node holds at most one attribute of each name, compared
    /// exactly. It should not change while a node holds the attribute.
    virtual WString Name() const = 0;
};
