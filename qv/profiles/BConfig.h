/// \file
/// BConfig: a small abstract tree of named nodes, each with text values under names and with
/// child nodes. A node is itself a section: there is no current section, a node is asked for
/// its children. Typed values are stored as text and converted here, once for every
/// implementation. docs/registry.md tells the decisions of the one implementation,
/// BConfigRegistry.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>

/// The node of a configuration tree. Operations that can fail return 0 for success and 32767
/// ("$ERR_ERROR") for any failure, with no detail; Child raises a BError(32767) instead. A
/// failed read leaves the caller's variable as it was. Objects hold no lock: one object
/// belongs to one thread at a time.
class QV_EXPORT BConfig : public BSmartObj {
public:
    static constexpr int kFailure = 32767; // "$ERR_ERROR"

    // The virtual operations in the order of their slots.

    /// The child node of \p name, made if it does not exist; never null.
    /// \throws BError 32767 for an empty name or a child that cannot be opened or made.
    virtual SP<BConfig> Child(WString name) const = 0;
    /// Copies this node's text values and, recursively, its children to \p target, making
    /// target nodes on the way. Works through every name whatever fails; the result is the
    /// first failure of a write, 32767 for a null target, else 0. Non-text values stay behind.
    virtual int CopyTo(SP<BConfig> target) const;
    /// The names of the child nodes; on failure 32767 and \p names left alone.
    virtual int QuerySubSections(BArray<WString>& names) const = 0;
    /// The names of the text values (other values are not listed); on failure 32767.
    virtual int QueryKeys(BArray<WString>& names) const = 0;
    virtual int ReadString(WString name, WString& value) const = 0;
    virtual int WriteString(WString name, WString value) = 0;
    /// Text read with WString::Convert; 32767 for text that is no number.
    virtual int ReadInt(WString name, int& value) const;
    /// Stores WString::FromInt of the value.
    virtual int WriteInt(WString name, int value);
    virtual int ReadFloat(WString name, float& value) const;
    /// Stores "%.8g" of the value: eight significant digits.
    virtual int WriteFloat(WString name, float value);
    virtual int ReadDouble(WString name, double& value) const;
    /// Stores "%.16g" of the value: sixteen significant digits.
    virtual int WriteDouble(WString name, double value);
    /// "TRUE" and "FALSE" in any letter case, else a number (true when not 0); 32767 for text
    /// that is neither.
    virtual int ReadBool(WString name, bool& value) const;
    /// Stores "True" or "False".
    virtual int WriteBool(WString name, bool value);
};
