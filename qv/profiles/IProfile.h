/// \file
/// IProfile: the abstract key/value store of the library. A profile has a path, a current
/// section and, in each section, text values under text keys. Everything stored is text; the
/// typed reads and writes below convert through the virtual Convert operations, which a store
/// may replace. Two ideas run through it: a read is given the caller's current value as its
/// default (a missing key leaves it as it was, and a profile built to do so stores that default
/// at once), and a key with an empty value counts as missing. docs/profiles.md tells the
/// decisions.
///
/// Threads: no operation locks, and the const operations change the current section, so one
/// object belongs to one thread at a time.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/WindowsTypes.h>

class QV_EXPORT IProfile : public BSmartObj {
public:
    /// The kind of a profile, fixed at construction and only handed out by GetType.
    enum ETypes : std::int32_t { kUnknown = 0, kStore = 1 };

    /// The limits that callers pass for "no limit" (not the extreme values of int).
    static constexpr int kNoMin = -2147483645;
    static constexpr int kNoMax = 2147483645;

    /// Empty path and section, type 0, no fallback writes.
    IProfile();
    IProfile(ETypes type, WString const& path, bool writeMissingKey);
    IProfile(IProfile const& other);
    /// Copies all four fields.
    IProfile& operator=(IProfile const& other);
    ~IProfile() override;

    // The virtual operations in the order of their slots.

    /// The file that an entry of a section names, by default next to this profile: reads key
    /// in section (which stays current) and prefixes GetDir() when the text names no folder.
    /// Empty when the section holds no key or the key is missing or empty.
    virtual WString GetSubProfileEntry(WString const& section, WString const& key) const;

protected:
    /// True when path has a drive or a folder part.
    virtual bool HasDir(WString const& path) const;

public:
    virtual WString GetPath() const;
    /// Replaces the path and touches nothing else.
    virtual void SetPath(WString path);
    /// The path up to and including its last separator ('\' or '/'); a path without one
    /// comes back whole.
    virtual WString GetDir() const;
    /// Whether a read that falls back on the caller's value stores that value.
    virtual bool const& WriteMissingKey() const;
    virtual WString const& GetSection() const;
    /// Every section name into sections. False here; the stores tell their own rule.
    virtual bool GetSections(BArray<WString>& sections) const;
    /// Makes section current whatever it is; false for an empty name. Otherwise the keys of
    /// the section go to *keys (when not null) and the result says whether there is any.
    virtual bool LoadSection(WString const& section, BArray<WString>* keys) const;
    /// Makes section current, also one that holds no key.
    virtual void SetSection(WString const& section) const;
    /// Removes a section; deleting the current one (in any letter case) leaves none current.
    virtual bool DeleteSection(WString const& section) const;

    /// @name Writes: true when the store took the text.
    /// The time as "MM/DD/YYYY hh:mm:ss.mmm"; the day of the week is not stored.
    virtual bool Write(WString const& key, _SYSTEMTIME const& value) const;
    /// "TRUE" or "FALSE".
    virtual bool Write(WString const& key, bool value) const;
    /// As int: 2147483648 and above are stored as negative numbers.
    virtual bool Write(WString const& key, unsigned long value) const;
    /// As int (the low 32 bits).
    virtual bool Write(WString const& key, long value) const;
    virtual bool Write(WString const& key, int value) const;
    /// Six significant digits ("%g").
    virtual bool Write(WString const& key, double value) const;
    virtual bool Write(WString const& key, WString const& value) const;
    /// A text literal is a text, not a bool.
    bool Write(WString const& key, char16_t const* value) const {
        return Write(key, WString(value));
    }

    /// @name Reads: true only when the stored text gave a usable value, which then is in the
    /// caller's variable. Otherwise the variable keeps its value (an int beyond min..max is set
    /// to the nearer limit; a time is set to 30 December 1899).
    /// A time text "MM/DD/YYYY hh:mm:ss.mmm", blanks allowed around the separators.
    virtual bool Read(WString const& key, _SYSTEMTIME& value) const;
    /// "TRUE" or "FALSE" in any letter case.
    virtual bool Read(WString const& key, bool& value) const;
    virtual bool Read(WString const& key, unsigned char& value, int min, int max) const;
    virtual bool Read(WString const& key, unsigned short& value, int min, int max) const;
    virtual bool Read(WString const& key, unsigned long& value, int min, int max) const;
    virtual bool Read(WString const& key, long& value, int min, int max) const;
    virtual bool Read(WString const& key, short& value, int min, int max) const;
    virtual bool Read(WString const& key, int& value, int min, int max) const;
    /// With float precision.
    virtual bool Read(WString const& key, double& value) const;
    virtual bool Read(WString const& key, float& value) const;
    virtual bool Read(WString const& key, WString& value) const;

    virtual bool WriteString(WString const& key, WString const& value) const;
    /// A block of bytes under key. False here; the stores tell their own form.
    virtual bool WriteMem(WString const& key, void* data, unsigned long long size) const;
    virtual bool ReadMem(WString const& key, void* data, unsigned long long size) const;
    /// Hexadecimal with at most 4 digits after a two-character allowance for "0x".
    virtual bool ReadHex(WString const& key, unsigned short& value) const;
    /// Hexadecimal text of at most digits + 2 characters, "0x" optional; the text must end
    /// after the number or at a blank.
    virtual bool ReadHex(WString const& key, unsigned long& value, int digits) const;
    virtual void DeleteKey(WString const& key);

protected:
    virtual void DeleteKeyImpl(WString const& key) const;
    virtual bool WriteKeyImpl(WString const& key, WString const& value) const;
    virtual WString GetString(WString const& key, WString const& defaultValue) const;
    virtual bool DeleteSectionImpl(WString const& section) const;

public:
    /// The key names of the current section.
    virtual BArray<WString> GetAllKeys() const = 0;

protected:
    virtual bool Convert(WString text, bool& value) const;
    virtual WString Convert(bool value) const;
    virtual bool Convert(WString const& text, float& value) const;
    virtual WString Convert(double value) const;
    virtual bool Convert(WString const& text, unsigned long& value) const;
    virtual bool Convert(WString const& text, int& value) const;
    virtual WString Convert(int value) const;

public:
    ETypes const& GetType() const { return m_type; }

protected:
    void Init();
    QV_DECLARE_CLASSNAME(IProfile)

    WString m_path;
    mutable WString m_section;
    ETypes m_type;
    bool m_writeMissingKey;
};
