/// \file
/// BConfigRegistry: a configuration tree on the registry. A node is a registry key, a value a
/// registry value; every operation goes to the registry at once, so a value written is stored
/// when WriteString returns. On this platform the registry is the library's own store of
/// Windows registry export files, one per root, in a directory the application may name
/// (SetStoreDirectory); docs/registry.md tells the format and the decisions.
#pragma once

#include <qv/profiles/BConfig.h>

class QV_EXPORT BConfigRegistry : public BConfig {
public:
    QV_DECLARE_CLASSNAME(BConfigRegistry)

    /// Opens the key of \p path, making it if it does not exist. A path may start with a root
    /// name, "HKCR", "HKLM", "HKCU", "HKCC", "HKU" or their long forms ("HKEY_LOCAL_MACHINE"),
    /// exact in letter case and followed by one separator; without one the key lies below
    /// HKEY_CURRENT_USER. A root name alone, or an empty path, gives the root itself. Where the
    /// store refuses writing, the key is opened for reading and later writes fail.
    /// \throws BError 32767 when the key can be neither opened nor made.
    explicit BConfigRegistry(WString path);
    ~BConfigRegistry() override;
    /// Changes nothing in the target: a node keeps its key.
    BConfigRegistry& operator=(BConfigRegistry const&) { return *this; }

    SP<BConfig> Child(WString name) const override;
    int QuerySubSections(BArray<WString>& names) const override;
    int QueryKeys(BArray<WString>& names) const override;
    /// Text and expandable text values (not expanded); 32767 for a missing value or another
    /// type. Data stored without a final zero ends at its stored length.
    int ReadString(WString name, WString& value) const override;
    int WriteString(WString name, WString value) override;

    /// The directory that holds the store files; empty (the default) is
    /// "~/.config/qvcore/registry" of the user the process runs as. Set it at start-up.
    static void SetStoreDirectory(WString directory);
    static WString StoreDirectory();

private:
    BConfigRegistry() = default;
    BConfigRegistry(BConfigRegistry const&) = delete;

    void* m_key = nullptr; // the open key; a root key is never closed
};
