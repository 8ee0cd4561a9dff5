/// \file
/// BProfileMap: the memory store of the profile family. Sections and keys live in ordered maps
/// that compare names without regard to letter case (WString::ILess); a name keeps the letter
/// case of its first creation. Text comes in through Load; nothing produces the text form again
/// and nothing touches a file. The path is empty and reads never write back.
///
/// Threads: no locks; one object belongs to one thread at a time.
#pragma once

#include <map>
#include <qv/core/Export.h>
#include <qv/profiles/IProfile.h>

class QV_EXPORT BProfileMap : public IProfile {
public:
    using Section = std::map<WString, WString, WString::ILess>;

    /// An empty profile whose current section is section.
    explicit BProfileMap(WString const& section = WString(u"default"));
    /// Deep copies of all sections.
    BProfileMap(BProfileMap const& other);
    BProfileMap& operator=(BProfileMap const& other);
    /// Takes the source's sections over; the source keeps its fields but no section.
    BProfileMap(BProfileMap&& other) noexcept;
    BProfileMap& operator=(BProfileMap&& other) noexcept;
    ~BProfileMap() override;

    /// Replaces all content by the sections and keys of text: "[name]" lines choose the
    /// section, "key = value" lines set keys (split at the first '=', blanks trimmed, leading
    /// '=' of the value dropped), every other line is ignored. Keys ahead of the first header
    /// go to the current section. Always 0.
    int Load(WString text);
    /// The section's keys, or null when there is no such section. Borrowed: valid until the
    /// section is changed.
    Section const* FindSection(WString const& section) const;

    /// The value of key in the current section (also an empty one), else defaultValue.
    WString GetString(WString const& key, WString const& defaultValue) const override;
    /// The stored number, the default, or the nearer limit for a number beyond the int range
    /// that IProfile's reads accept.
    int GetInt(WString const& key, int defaultValue) const;
    bool WriteInt(WString const& key, int value) const;
    /// Every section name in map order (also emptied ones); true if there is one.
    bool GetSections(BArray<WString>& sections) const override;
    /// The block as text of two characters a byte, "0" to "?" for each nibble.
    bool WriteMem(WString const& key, void* data, unsigned long long size) const override;
    /// False for a null buffer, a missing or empty key, or a text that is not exactly two
    /// characters a byte; a bad character stops with false after the bytes before it.
    bool ReadMem(WString const& key, void* data, unsigned long long size) const override;

private:
    void DeleteKeyImpl(WString const& key) const override;
    bool WriteKeyImpl(WString const& key, WString const& value) const override;
    /// Empties the section but keeps it listed; false when there is none.
    bool DeleteSectionImpl(WString const& section) const override;
    BArray<WString> GetAllKeys() const override;

    QV_DECLARE_CLASSNAME(BProfileMap)

    mutable std::map<WString, Section, WString::ILess> m_sections;
};
