/// \file
/// BIniProfile: the file store of the profile family, on an ini file of the private-profile
/// service (qv/platform/PrivateProfile.h). The object holds no copy of the file: every read
/// asks the service and every write reaches the file before it returns, so objects and
/// processes on one file see each other's writes. The file is created by the first write, in
/// UTF-16 (see BProfile::WriteString). docs/profiles.md tells the decisions.
///
/// Threads: one object belongs to one thread at a time (its current section); objects on the
/// same file may live in different threads and processes.
#pragma once

#include <qv/core/Export.h>
#include <qv/profiles/IProfile.h>

class QV_EXPORT BIniProfile : public IProfile {
public:
    /// The file need not exist. With writeMissingKey, reads that fall back on the caller's
    /// value store it.
    BIniProfile(WString const& path, WString const& section, bool writeMissingKey);
    /// Two objects then work on one file, each with its own current section.
    BIniProfile(BIniProfile const& other);
    BIniProfile(BIniProfile&& other) noexcept;
    BIniProfile& operator=(BIniProfile const& other);
    BIniProfile& operator=(BIniProfile&& other) noexcept;
    ~BIniProfile() override;

    /// The key's value in the current section, cut at 32768 characters, else defaultValue.
    /// A present but empty key with a non-empty default stores the default when the profile
    /// writes fallbacks, and still gives the empty text.
    WString GetString(WString const& key, WString const& defaultValue) const override;
    /// The stored number, the default, or the nearer limit for a number beyond the range that
    /// IProfile's reads accept.
    int GetInt(WString const& key, int defaultValue) const;
    bool WriteInt(WString const& key, int value) const;
    /// The file's section names in file order; false if there is none or the path is empty.
    bool GetSections(BArray<WString>& sections) const override;
    /// The block as checksummed hexadecimal text. A size beyond the int range throws the
    /// BError of the checked narrowing.
    bool WriteMem(WString const& key, void* data, unsigned long long size) const override;
    /// False when the key is missing, holds another size or its checksum differs.
    bool ReadMem(WString const& key, void* data, unsigned long long size) const override;

private:
    void DeleteKeyImpl(WString const& key) const override;
    bool WriteKeyImpl(WString const& key, WString const& value) const override;
    bool DeleteSectionImpl(WString const& section) const override;
    /// The key names of the current section in file order.
    BArray<WString> GetAllKeys() const override;

    QV_DECLARE_CLASSNAME(BIniProfile)
};
