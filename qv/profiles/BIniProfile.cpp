#include <qv/profiles/BIniProfile.h>

// Every operation is one call (or the growing-buffer loop of calls) of the private-profile
// service; nothing is kept here.

#include <qv/core/Narrowing.h>
#include <qv/platform/PrivateProfile.h>
#include <qv/profiles/BProfile.h>
#include <qv/profiles/private/GrowingBuffer.h>

QV_REGISTER_CLASSNAME(BIniProfile);

using qv::detail::GrowingRead;
using qv::detail::NamesOfList;

BIniProfile::BIniProfile(WString const& path, WString const& section, bool writeMissingKey)
    : IProfile(kStore, path, writeMissingKey) {
    m_section = section;
}

BIniProfile::BIniProfile(BIniProfile const& other) : IProfile(other) {}

BIniProfile::BIniProfile(BIniProfile&& other) noexcept : IProfile(other) {}

BIniProfile& BIniProfile::operator=(BIniProfile const& other) {
    IProfile::operator=(other);
    return *this;
}

BIniProfile& BIniProfile::operator=(BIniProfile&& other) noexcept {
    IProfile::operator=(other);
    return *this;
}

BIniProfile::~BIniProfile() = default;

WString BIniProfile::GetString(WString const& key, WString const& defaultValue) const {
    auto [text, n] = GrowingRead(1, [&](char16_t* buffer, std::uint32_t size) {
        return qv::platform::GetPrivateProfileStringW(
            m_section.CStr(), key.CStr(), defaultValue.CStr(), buffer, size, m_path.CStr());
    });
    if (n == 0 && m_writeMissingKey && !defaultValue.IsEmpty())
        WriteString(key, defaultValue);
    return text;
}

int BIniProfile::GetInt(WString const& key, int defaultValue) const {
    int value = defaultValue;
    Read(key, value, kNoMin, kNoMax);
    return value;
}

bool BIniProfile::WriteInt(WString const& key, int value) const {
    return WriteString(key, Convert(value));
}

bool BIniProfile::GetSections(BArray<WString>& sections) const {
    sections.Clear();
    if (m_path.IsEmpty())
        return false;
    auto const [text, n] = GrowingRead(1, [&](char16_t* buffer, std::uint32_t size) {
        return qv::platform::GetPrivateProfileSectionNamesW(buffer, size, m_path.CStr());
    });
    sections = NamesOfList(text, n);
    return sections.Count() > 0;
}

bool BIniProfile::WriteMem(WString const& key, void* data, unsigned long long size) const {
    auto const bytes = static_cast<std::uint32_t>(Sizet_int(size));
    return qv::platform::WritePrivateProfileStructW(m_section.CStr(), key.CStr(), data, bytes,
                                                    m_path.CStr());
}

bool BIniProfile::ReadMem(WString const& key, void* data, unsigned long long size) const {
    auto const bytes = static_cast<std::uint32_t>(Sizet_int(size));
    return qv::platform::GetPrivateProfileStructW(m_section.CStr(), key.CStr(), data, bytes,
                                                  m_path.CStr());
}

void BIniProfile::DeleteKeyImpl(WString const& key) const {
    qv::platform::WritePrivateProfileStringW(m_section.CStr(), key.CStr(), nullptr, m_path.CStr());
}

bool BIniProfile::WriteKeyImpl(WString const& key, WString const& value) const {
    return BProfile::WriteString(m_path, m_section, key, value) == 0;
}

bool BIniProfile::DeleteSectionImpl(WString const& section) const {
    return qv::platform::WritePrivateProfileSectionW(section.CStr(), nullptr, m_path.CStr());
}

BArray<WString> BIniProfile::GetAllKeys() const {
    auto const [text, n] = GrowingRead(1, [&](char16_t* buffer, std::uint32_t size) {
        return qv::platform::GetPrivateProfileStringW(m_section.CStr(), nullptr, nullptr, buffer,
                                                      size, m_path.CStr());
    });
    return NamesOfList(text, n);
}
