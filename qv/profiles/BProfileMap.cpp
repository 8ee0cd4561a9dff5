#include <qv/profiles/BProfileMap.h>

// Two levels of std::map under the case-blind order. Load walks the text line by line in place
// (no stream object): a line ends at a line feed, and the carriage return of a CR LF end stays
// on the line, where the trimming of a value removes it.

#include <qv/platform/TextServices.h>

QV_REGISTER_CLASSNAME(BProfileMap);

BProfileMap::BProfileMap(WString const& section) : IProfile(kStore, WString(), false) {
    m_section = section;
}

BProfileMap::BProfileMap(BProfileMap const& other)
    : IProfile(other), m_sections(other.m_sections) {}

BProfileMap& BProfileMap::operator=(BProfileMap const& other) {
    IProfile::operator=(other);
    if (this != &other)
        m_sections = other.m_sections;
    return *this;
}

BProfileMap::BProfileMap(BProfileMap&& other) noexcept
    : IProfile(other), m_sections(std::move(other.m_sections)) {
    other.m_sections.clear();
}

BProfileMap& BProfileMap::operator=(BProfileMap&& other) noexcept {
    IProfile::operator=(other);
    if (this != &other) {
        m_sections = std::move(other.m_sections);
        other.m_sections.clear();
    }
    return *this;
}

BProfileMap::~BProfileMap() = default;

int BProfileMap::Load(WString text) {
    m_sections.clear();
    char16_t const* p = text.CStr();
    while (*p) {
        char16_t const* end = p;
        while (*end && *end != u'\n')
            ++end;
        WString line(std::u16string_view(p, static_cast<std::size_t>(end - p)));
        p = *end ? end + 1 : end;
        if (line[0] == u'[') {
            WString::size_type close;
            if (line.IncludesPos(u']', close)) {
                SetSection(line.Sub(1, close - 1));
                continue;
            }
        }
        WString value;
        if (!line.Split(value, u'='))
            continue;
        line.TrimLeft();
        line.TrimRight();
        value.TrimLeft(u'=');
        value.TrimLeft();
        value.TrimRight();
        Write(line, value);
    }
    return 0;
}

BProfileMap::Section const* BProfileMap::FindSection(WString const& section) const {
    auto const it = m_sections.find(section);
    return it == m_sections.end() ? nullptr : &it->second;
}

WString BProfileMap::GetString(WString const& key, WString const& defaultValue) const {
    if (Section const* section = FindSection(m_section)) {
        auto const it = section->find(key);
        if (it != section->end())
            return it->second;
    }
    return defaultValue;
}

int BProfileMap::GetInt(WString const& key, int defaultValue) const {
    int value = defaultValue;
    Read(key, value, kNoMin, kNoMax);
    return value;
}

bool BProfileMap::WriteInt(WString const& key, int value) const {
    return WriteString(key, Convert(value));
}

bool BProfileMap::GetSections(BArray<WString>& sections) const {
    sections.Clear();
    for (auto const& [name, keys] : m_sections)
        sections.Add(name);
    return sections.Count() > 0;
}

bool BProfileMap::WriteMem(WString const& key, void* data, unsigned long long size) const {
    WString text;
    text.EncodeMemory(data, size);
    return WriteString(key, text);
}

bool BProfileMap::ReadMem(WString const& key, void* data, unsigned long long size) const {
    if (!data)
        return false;
    WString text;
    if (!Read(key, text))
        return false;
    return text.DecodeMemory(data, size);
}

void BProfileMap::DeleteKeyImpl(WString const& key) const {
    auto const it = m_sections.find(m_section);
    if (it != m_sections.end())
        it->second.erase(key);
}

bool BProfileMap::WriteKeyImpl(WString const& key, WString const& value) const {
    m_sections[m_section].insert_or_assign(key, value);
    return true;
}

bool BProfileMap::DeleteSectionImpl(WString const& section) const {
    auto const it = m_sections.find(section);
    if (it == m_sections.end())
        return false;
    it->second.clear();
    return true;
}

BArray<WString> BProfileMap::GetAllKeys() const {
    BArray<WString> keys;
    if (Section const* section = FindSection(m_section))
        for (auto const& [name, value] : *section)
            keys.Add(name);
    return keys;
}
