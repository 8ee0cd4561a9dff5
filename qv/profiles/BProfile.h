/// \file
/// BProfile: BProfileBase on an ini file, through the private-profile service. Nothing is held
/// in the object but path, section and mode: every call goes to the file at once. In read-only
/// mode every write and deletion throws; in the other modes a read that falls back on its
/// default stores it. The static WriteString is the one way text values reach an ini file,
/// for BIniProfile too: it creates a missing file as UTF-16 and converts an ANSI file before it
/// stores a character that the code page lacks. docs/profiles.md tells the decisions.
///
/// Threads: one object belongs to one thread at a time; the static functions may be called
/// from any thread.
#pragma once

#include <qv/core/Export.h>
#include <qv/profiles/BProfileBase.h>
#include <qv/profiles/EProfileMode.h>

class QV_EXPORT BProfile : public BProfileBase {
public:
    /// The code of a refused file operation.
    static constexpr int kFileError = 31825; // "$ERR_FILE_ERROR"

    /// Mode 1 empties the file (making it UTF-16), mode 2 creates it when it is missing, mode 0
    /// leaves it alone. A failure shows only in later operations.
    BProfile(WString path, EProfileMode mode);
    BProfile(BProfile const& other);
    BProfile& operator=(BProfile const& other);
    ~BProfile() override;

    /// Opens the file for appending, which creates it if it can; whether that worked.
    bool IsValid() const override;
    void SetSection(WString section) override;
    WString GetSection() const override;
    bool WriteString(int index, WString key, WString value) override;
    /// Through the static WriteString. Throws BError 32767 in read-only mode.
    bool WriteString(WString key, WString value) override;
    bool WriteInt(int index, WString key, int value) override;
    /// Decimal text.
    bool WriteInt(WString key, int value) override;
    bool WriteDouble(int index, WString key, double value) override;
    /// Fifteen significant digits.
    bool WriteDouble(WString key, double value) override;
    bool WriteMem(int index, WString key, void* data, unsigned int size) override;
    /// Checksummed hexadecimal text.
    bool WriteMem(WString key, void* data, unsigned int size) override;
    /// "TRUE" or "FALSE", straight to the service: neither creates nor converts the file.
    bool WriteBoolean(WString key, bool value) override;
    WString ReadString(int index, WString key, WString defaultValue) override;
    /// The value (cut at 32768 characters), or defaultValue; an empty answer stores a
    /// non-empty default unless read-only.
    WString ReadString(WString key, WString defaultValue) override;
    int ReadInt(int index, WString key, int defaultValue) override;
    /// The leading number of the first 256 characters, or the default (stored, unless
    /// read-only, when the key is missing or empty).
    int ReadInt(WString key, int defaultValue) override;
    double ReadDouble(int index, WString key, double defaultValue) override;
    double ReadDouble(WString key, double defaultValue) override;
    bool ReadMem(int index, WString key, void* data, unsigned int size) override;
    /// Allowed in every mode. False when the key is missing, holds another size or a wrong
    /// checksum.
    bool ReadMem(WString key, void* data, unsigned int size) override;
    /// True only for "TRUE" in any letter case; the default only for a missing or empty key.
    bool ReadBoolean(WString key, bool defaultValue) override;
    void DeleteKey(WString key) override;
    /// Removes the current section; it stays current.
    void DeleteSection() override;
    /// Whether the section has a line (looked at through 1024 characters).
    bool ExistsSection(WString section) const override;

    /// Stores value under key: creates a missing file (and its folder) as UTF-16, converts an
    /// ANSI file to UTF-16 first when value holds a character of code 256 or above. 0, or
    /// kFileError when the file cannot be made or written.
    static int WriteString(WString const& path, WString const& section, WString const& key,
                           WString const& value);

private:
    /// Makes the folder and an empty UTF-16 file, in place of any file unless replaceExisting
    /// is false (a file that a concurrent writer made meanwhile then stays); 0 or kFileError.
    static int CreateNew(WString const& path, bool replaceExisting = true);
    /// Throws BError 32767 with "$IDS_ErrorHint61" in read-only mode.
    void CheckMode() const;

    /// One fixed read of 256 characters with an empty default.
    WString ReadShort(WString const& key) const;

    QV_DECLARE_CLASSNAME(BProfile)

    WString m_path;
    WString m_section;
    EProfileMode m_mode;
};
