/// \file
/// BBinProfile: the binary member of the BProfileBase family. The whole file is read into one
/// flat dictionary of typed values when the object is made, reads and writes work on that
/// dictionary, and the file is rewritten once, when the object is destroyed, if anything
/// changed. Keys join section and name as "[section]name" in lower case, so sections and keys
/// compare without regard to case and come back in lower case; an empty section does not
/// exist. Two forms are read (ANSI and Unicode keys); the Unicode form is written.
/// docs/profiles.md shows the layout.
///
/// Threads: one object belongs to one thread at a time. Copies share their values, and each
/// copy writes its own file at destruction if it was changed.
#pragma once

#include <qv/core/containers/BArray.h>
#include <qv/core/containers/BDictionary.h>
#include <qv/core/files/BFile.h>
#include <qv/profiles/BProfileBase.h>
#include <qv/profiles/BVariant.h>
#include <qv/profiles/EProfileMode.h>

class QV_EXPORT BBinProfile : public BProfileBase {
public:
    /// Selects section "default" and, unless \p mode is kProfileNew, reads the file. A missing
    /// file is an empty profile; a file with an unknown magic gives IsValid false and no keys.
    BBinProfile(WString path, EProfileMode mode);
    BBinProfile(BBinProfile const& other) = default;
    /// Writes the file, through a temporary file and a rename, when something changed and the
    /// mode allows writing; a failure passes silently and leaves the old file whole.
    ~BBinProfile() override;

    bool IsValid() const override;
    void SetSection(WString section) override;
    WString GetSection() const override;
    /// The writes replace whatever the key held, also a value of another type, and always give
    /// true. \throws BError 32767 with "$IDS_ErrorHint61" in read-only mode.
    bool WriteString(int index, WString key, WString value) override;
    bool WriteString(WString key, WString value) override;
    bool WriteInt(int index, WString key, int value) override;
    bool WriteInt(WString key, int value) override;
    bool WriteDouble(int index, WString key, double value) override;
    bool WriteDouble(WString key, double value) override;
    bool WriteMem(int index, WString key, void* data, unsigned int size) override;
    /// Stores a copy of the block.
    bool WriteMem(WString key, void* data, unsigned int size) override;
    bool WriteBoolean(WString key, bool value) override;
    /// The text of a wide or narrow string value; anything else gives the default. Reads never
    /// store their default.
    WString ReadString(int index, WString key, WString defaultValue) override;
    WString ReadString(WString key, WString defaultValue) override;
    /// The value when the key holds exactly this type, else the default: no conversion.
    int ReadInt(int index, WString key, int defaultValue) override;
    int ReadInt(WString key, int defaultValue) override;
    double ReadDouble(int index, WString key, double defaultValue) override;
    double ReadDouble(WString key, double defaultValue) override;
    bool ReadMem(int index, WString key, void* data, unsigned int size) override;
    /// True and the block copied when the key holds a block of exactly \p size bytes.
    bool ReadMem(WString key, void* data, unsigned int size) override;
    bool ReadBoolean(WString key, bool defaultValue) override;
    /// \throws BError 32767 in read-only mode.
    void DeleteKey(WString key) override;
    /// Removes every key of the current section, which stays current. \throws BError 32767
    /// in read-only mode.
    void DeleteSection() override;
    bool ExistsSection(WString section) const override;

    /// Every joined key ("[section]name", lower case), in no particular order: for tools
    /// that list a profile.
    BArray<WString> Keys() const;
    /// The value under a joined key, or null.
    SP<BVariant> Value(WString const& mappedKey) const;

protected:
    // The virtual operations added behind those of BProfileBase, in the order of their slots.
    virtual WString MapKey(WString key) const;
    /// The section part of a joined key: from its second character up to the first ']'.
    virtual WString Section(WString mappedKey) const;
    virtual bool Read();
    virtual bool ReadAnsiFormat(BFile& file);
    virtual bool ReadUnicodeFormat(BFile& file);
    virtual bool Write() const;
    virtual void CheckMode() const;

    QV_DECLARE_CLASSNAME(BBinProfile)

private:
    template <class ReadKey>
    bool ReadRecords(BFile& file, ReadKey readKey);
    bool Put(WString const& key, SP<BVariant> value);
    template <class T>
    T const* Held(WString const& key) const;

    WString m_path;
    WString m_section;
    BDictionary<WString, SP<BVariant>> m_values;
    EProfileMode m_mode;
    std::uint32_t m_ansiMagic = 1497451525;
    std::uint32_t m_unicodeMagic = 1765886982;
    bool m_modified = false;
    bool m_valid = true;
};
