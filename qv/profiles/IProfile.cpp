#include <qv/profiles/IProfile.h>

// The typed interface on the primitive operations. Every typed read goes through
// Read(key, WString &), which is where a key with an empty value turns into a missing one and
// where the fallback write happens; the typed forms only add their conversion and limits.

#include <cstdint>
#include <qv/platform/PathText.h>
#include <qv/platform/SystemTime.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideNumbers.h>

QV_REGISTER_CLASSNAME(IProfile);

namespace {

// The record that a read of a time leaves when there is nothing better: 30 December 1899,
// day 0 of the OLE calendar.
constexpr _SYSTEMTIME kDateDefault = {1899, 12, 6, 30, 0, 0, 0, 0};

// wcstoul in base 16 with its 32-bit unsigned long: blanks, a sign, an optional "0x", digits.
// Overflow gives 0xFFFFFFFF; a minus sign negates. end is where the scan stopped, the start of
// the text when no digit came.
std::uint32_t ScanHex(char16_t const* text, char16_t const*& end) {
    char16_t const* p = text;
    while (qv::platform::IsSpaceW(*p))
        ++p;
    bool negative = false;
    if (*p == u'+' || *p == u'-')
        negative = *p++ == u'-';
    char16_t const* zero = nullptr; // the 0 of a "0x" prefix
    if (p[0] == u'0' && (p[1] == u'x' || p[1] == u'X')) {
        zero = p;
        p += 2;
    }
    std::uint64_t number = 0;
    bool overflow = false;
    char16_t const* const digits = p;
    for (;; ++p) {
        unsigned d;
        if (*p >= u'0' && *p <= u'9')
            d = *p - u'0';
        else if (*p >= u'a' && *p <= u'f')
            d = *p - u'a' + 10;
        else if (*p >= u'A' && *p <= u'F')
            d = *p - u'A' + 10;
        else
            break;
        number = number * 16 + d;
        if (number > 0xFFFFFFFFull) {
            overflow = true;
            number = 0xFFFFFFFFull;
        }
    }
    if (p == digits) {
        // "0x" with no digit behind it reads as the number 0, ending at the x.
        end = zero ? zero + 1 : text;
        return 0;
    }
    end = p;
    if (overflow)
        return 0xFFFFFFFFu;
    auto const value = static_cast<std::uint32_t>(number);
    return negative ? 0u - value : value;
}

} // namespace

IProfile::IProfile() {
    Init();
}

IProfile::IProfile(ETypes type, WString const& path, bool writeMissingKey)
    : m_path(path), m_type(type), m_writeMissingKey(writeMissingKey) {}

IProfile::IProfile(IProfile const& other)
    : BSmartObj(other), m_path(other.m_path), m_section(other.m_section), m_type(other.m_type),
      m_writeMissingKey(other.m_writeMissingKey) {}

IProfile& IProfile::operator=(IProfile const& other) {
    m_path = other.m_path;
    m_section = other.m_section;
    m_type = other.m_type;
    m_writeMissingKey = other.m_writeMissingKey;
    return *this;
}

IProfile::~IProfile() = default;

void IProfile::Init() {
    m_type = kUnknown;
    m_writeMissingKey = false;
}

WString IProfile::GetSubProfileEntry(WString const& section, WString const& key) const {
    WString result;
    if (!LoadSection(section, nullptr))
        return result;
    if (!Read(key, result))
        return WString();
    if (!HasDir(result))
        result.Prepend(GetDir());
    return result;
}

bool IProfile::HasDir(WString const& path) const {
    char16_t drive[3];
    char16_t dir[256];
    char16_t name[256];
    char16_t ext[256];
    if (qv::platform::_wsplitpath_s(path.CStr(), drive, 3, dir, 256, name, 256, ext, 256) != 0)
        return false;
    return drive[0] != 0 || dir[0] != 0;
}

WString IProfile::GetPath() const {
    return m_path;
}

void IProfile::SetPath(WString path) {
    m_path = std::move(path);
}

WString IProfile::GetDir() const {
    char16_t const* text = m_path.CStr();
    char16_t const* last = nullptr;
    for (char16_t const* p = text; *p; ++p)
        if (qv::platform::IsPathSeparator(*p))
            last = p;
    if (!last)
        return m_path;
    return m_path.Sub(0, static_cast<WString::size_type>(last - text) + 1);
}

bool const& IProfile::WriteMissingKey() const {
    return m_writeMissingKey;
}

WString const& IProfile::GetSection() const {
    return m_section;
}

bool IProfile::GetSections(BArray<WString>&) const {
    return false;
}

bool IProfile::LoadSection(WString const& section, BArray<WString>* keys) const {
    m_section = section;
    if (section.IsEmpty())
        return false;
    BArray<WString> all = GetAllKeys();
    bool const any = all.Count() > 0;
    if (keys)
        *keys = all;
    return any;
}

void IProfile::SetSection(WString const& section) const {
    LoadSection(WString(), nullptr);
    m_section = section;
}

bool IProfile::DeleteSection(WString const& section) const {
    if (section.IEqual(m_section))
        LoadSection(WString(), nullptr);
    return DeleteSectionImpl(section);
}

bool IProfile::Write(WString const& key, _SYSTEMTIME const& value) const {
    WString text;
    text.Printf(u"%02d/%02d/%04d %02d:%02d:%02d.%03d", int{value.wMonth}, int{value.wDay},
                int{value.wYear}, int{value.wHour}, int{value.wMinute}, int{value.wSecond},
                int{value.wMilliseconds});
    return WriteString(key, text);
}

bool IProfile::Write(WString const& key, bool value) const {
    return WriteString(key, Convert(value));
}

bool IProfile::Write(WString const& key, unsigned long value) const {
    return Write(key, static_cast<int>(static_cast<std::uint32_t>(value)));
}

bool IProfile::Write(WString const& key, long value) const {
    return Write(key, static_cast<int>(static_cast<std::uint32_t>(value)));
}

bool IProfile::Write(WString const& key, int value) const {
    return Write(key, Convert(value));
}

bool IProfile::Write(WString const& key, double value) const {
    return WriteString(key, Convert(value));
}

bool IProfile::Write(WString const& key, WString const& value) const {
    return WriteString(key, value);
}

bool IProfile::Read(WString const& key, _SYSTEMTIME& value) const {
    WString text;
    bool const found = Read(key, text);
    value = kDateDefault;
    if (!found)
        return false;
    int month, day, year, hour, minute, second, ms;
    bool result = false;
    if (qv::platform::swscanf(text.CStr(), u" %d / %d / %d %d : %d : %d . %d ", &month, &day, &year,
                              &hour, &minute, &second, &ms) == 7) {
        value = {static_cast<std::uint16_t>(year),
                 static_cast<std::uint16_t>(month),
                 0,
                 static_cast<std::uint16_t>(day),
                 static_cast<std::uint16_t>(hour),
                 static_cast<std::uint16_t>(minute),
                 static_cast<std::uint16_t>(second),
                 static_cast<std::uint16_t>(ms)};
        result = true;
    }
    // The round trip fills in the day of the week. A record that names no real date (or the
    // default, which lies before 1601) fails it and stays as it is.
    _FILETIME ticks;
    _SYSTEMTIME normalised;
    if (qv::platform::SystemTimeToFileTime(&value, &ticks) &&
        qv::platform::FileTimeToSystemTime(&ticks, &normalised))
        value = normalised;
    return result;
}

bool IProfile::Read(WString const& key, bool& value) const {
    WString text = Convert(value);
    if (!Read(key, text))
        return false;
    return Convert(text, value);
}

namespace {

// The narrow and long reads share the int read: the caller's value widens into an int, and
// only a successful read narrows the result back.
template <class T, class Profile>
bool ReadThroughInt(Profile const& profile, WString const& key, T& value, int min, int max) {
    int wide;
    if constexpr (std::is_unsigned_v<T>)
        wide = static_cast<int>(static_cast<std::uint32_t>(value));
    else
        wide = static_cast<int>(value);
    if (!profile.Read(key, wide, min, max))
        return false;
    if constexpr (std::is_unsigned_v<T>)
        value = static_cast<T>(static_cast<std::uint32_t>(wide));
    else
        value = static_cast<T>(wide);
    return true;
}

} // namespace

bool IProfile::Read(WString const& key, unsigned char& value, int min, int max) const {
    return ReadThroughInt(*this, key, value, min, max);
}

bool IProfile::Read(WString const& key, unsigned short& value, int min, int max) const {
    return ReadThroughInt(*this, key, value, min, max);
}

bool IProfile::Read(WString const& key, unsigned long& value, int min, int max) const {
    return ReadThroughInt(*this, key, value, min, max);
}

bool IProfile::Read(WString const& key, long& value, int min, int max) const {
    return ReadThroughInt(*this, key, value, min, max);
}

bool IProfile::Read(WString const& key, short& value, int min, int max) const {
    return ReadThroughInt(*this, key, value, min, max);
}

bool IProfile::Read(WString const& key, int& value, int min, int max) const {
    WString text = Convert(value);
    if (!Read(key, text))
        return false;
    int parsed;
    if (!Convert(text, parsed)) {
        if (m_writeMissingKey)
            Write(key, value);
        return false;
    }
    if (parsed < min) {
        value = min;
        return false;
    }
    if (parsed > max) {
        value = max;
        return false;
    }
    value = parsed;
    return true;
}

bool IProfile::Read(WString const& key, double& value) const {
    float narrow = static_cast<float>(value);
    if (!Read(key, narrow))
        return false;
    value = narrow;
    return true;
}

bool IProfile::Read(WString const& key, float& value) const {
    double const wide = value;
    WString text = Convert(wide);
    if (!Read(key, text))
        return false;
    float parsed;
    if (!Convert(text, parsed)) {
        if (m_writeMissingKey)
            Write(key, wide);
        return false;
    }
    value = parsed;
    return true;
}

bool IProfile::Read(WString const& key, WString& value) const {
    WString text = GetString(key, WString());
    if (!text.IsEmpty()) {
        value = text;
        return true;
    }
    if (m_writeMissingKey && !value.IsEmpty())
        Write(key, value);
    return false;
}

bool IProfile::WriteString(WString const& key, WString const& value) const {
    return WriteKeyImpl(key, value);
}

bool IProfile::WriteMem(WString const&, void*, unsigned long long) const {
    return false;
}

bool IProfile::ReadMem(WString const&, void*, unsigned long long) const {
    return false;
}

bool IProfile::ReadHex(WString const& key, unsigned short& value) const {
    unsigned long wide = 0;
    if (!ReadHex(key, wide, 4))
        return false;
    value = static_cast<unsigned short>(wide & 0xFFFF);
    return true;
}

bool IProfile::ReadHex(WString const& key, unsigned long& value, int digits) const {
    WString text;
    if (!Read(key, text))
        return false;
    text.TrimLeft();
    text.TrimRight();
    constexpr long long kPrefix = 2; // "0x", counted whether it is there or not
    auto const length = static_cast<long long>(text.Length());
    if (length <= kPrefix || length - kPrefix > digits)
        return false;
    char16_t const* end = nullptr;
    std::uint32_t const number = ScanHex(text.CStr(), end);
    if (*end != 0 && !qv::platform::IsSpaceW(*end))
        return false;
    value = number;
    return true;
}

void IProfile::DeleteKey(WString const& key) {
    DeleteKeyImpl(key);
}

void IProfile::DeleteKeyImpl(WString const&) const {}

bool IProfile::WriteKeyImpl(WString const&, WString const&) const {
    return false;
}

WString IProfile::GetString(WString const&, WString const& defaultValue) const {
    return defaultValue;
}

bool IProfile::DeleteSectionImpl(WString const&) const {
    return false;
}

bool IProfile::Convert(WString text, bool& value) const {
    char16_t* units = text.Str();
    for (; *units; ++units)
        *units = qv::platform::ToUpperW(*units);
    if (text == u"TRUE") {
        value = true;
        return true;
    }
    if (text == u"FALSE") {
        value = false;
        return true;
    }
    return false;
}

WString IProfile::Convert(bool value) const {
    return WString(value ? u"TRUE" : u"FALSE");
}

bool IProfile::Convert(WString const& text, float& value) const {
    return qv::platform::swscanf(text.CStr(), u"%g", &value) == 1;
}

WString IProfile::Convert(double value) const {
    WString text;
    text.Printf(u"%g", value);
    return text;
}

bool IProfile::Convert(WString const& text, unsigned long& value) const {
    int scanned;
    if (qv::platform::swscanf(text.CStr(), u"%d", &scanned) != 1)
        return false;
    value = static_cast<std::uint32_t>(scanned);
    return true;
}

bool IProfile::Convert(WString const& text, int& value) const {
    return qv::platform::swscanf(text.CStr(), u"%d", &value) == 1;
}

WString IProfile::Convert(int value) const {
    WString text;
    text.Printf(u"%d", value);
    return text;
}
