#include <qv/profiles/BProfile.h>

// Each operation is one call of the private-profile service (ReadString: the growing-buffer
// loop). File creation and conversion go through the service as well, so that they happen
// under the same lock as its writes and can never cut a concurrent writer's key.

#include <qv/core/BError.h>
#include <qv/core/files/BDirEntry.h>
#include <qv/core/files/BFile.h>
#include <qv/platform/PrivateProfile.h>
#include <qv/platform/WideNumbers.h>
#include <qv/profiles/private/GrowingBuffer.h>

QV_REGISTER_CLASSNAME(BProfile);

BProfile::BProfile(WString path, EProfileMode mode)
    : m_path(std::move(path)), m_section(u"default"), m_mode(mode) {
    if (mode == kProfileNew || (mode == kProfileReadWrite && !BFile::Exist(m_path.CStr())))
        CreateNew(m_path);
}

BProfile::BProfile(BProfile const& other)
    : BProfileBase(other), m_path(other.m_path), m_section(other.m_section), m_mode(other.m_mode) {}

BProfile& BProfile::operator=(BProfile const& other) {
    m_path = other.m_path;
    m_section = other.m_section;
    m_mode = other.m_mode;
    return *this;
}

BProfile::~BProfile() = default;

bool BProfile::IsValid() const {
    BFile file;
    return file.Open(m_path.CStr(), u"a+b");
}

void BProfile::SetSection(WString section) {
    m_section = std::move(section);
}

WString BProfile::GetSection() const {
    return m_section;
}

bool BProfile::WriteString(int index, WString key, WString value) {
    return WriteString(IndexedKey(key, index), std::move(value));
}

bool BProfile::WriteString(WString key, WString value) {
    CheckMode();
    return WriteString(m_path, m_section, key, value) == 0;
}

bool BProfile::WriteInt(int index, WString key, int value) {
    return WriteInt(IndexedKey(key, index), value);
}

bool BProfile::WriteInt(WString key, int value) {
    WString text;
    text.ItoA(value, 10);
    return WriteString(std::move(key), text);
}

bool BProfile::WriteDouble(int index, WString key, double value) {
    return WriteDouble(IndexedKey(key, index), value);
}

bool BProfile::WriteDouble(WString key, double value) {
    WString text;
    text.Printf(u"%.15g", value);
    return WriteString(std::move(key), text);
}

bool BProfile::WriteMem(int index, WString key, void* data, unsigned int size) {
    return WriteMem(IndexedKey(key, index), data, size);
}

bool BProfile::WriteMem(WString key, void* data, unsigned int size) {
    CheckMode();
    return qv::platform::WritePrivateProfileStructW(m_section.CStr(), key.CStr(), data, size,
                                                    m_path.CStr());
}

bool BProfile::WriteBoolean(WString key, bool value) {
    CheckMode();
    return qv::platform::WritePrivateProfileStringW(m_section.CStr(), key.CStr(),
                                                    value ? u"TRUE" : u"FALSE", m_path.CStr());
}

WString BProfile::ReadString(int index, WString key, WString defaultValue) {
    return ReadString(IndexedKey(key, index), std::move(defaultValue));
}

WString BProfile::ReadString(WString key, WString defaultValue) {
    auto const [text, n] = qv::detail::GrowingRead(0, [&](char16_t* buffer, std::uint32_t size) {
        return qv::platform::GetPrivateProfileStringW(
            m_section.CStr(), key.CStr(), defaultValue.CStr(), buffer, size, m_path.CStr());
    });
    if (!text.IsEmpty())
        return text;
    if (m_mode != kProfileReadOnly && !defaultValue.IsEmpty())
        WriteString(key, defaultValue);
    return defaultValue;
}

int BProfile::ReadInt(int index, WString key, int defaultValue) {
    return ReadInt(IndexedKey(key, index), defaultValue);
}

namespace {

// The short reads: a missing or empty key gives the default, stored (by the virtual writer)
// unless the profile is read-only; any other text goes to parse.
template <class T, class Parse, class Store>
T ReadOrStore(WString const& text, bool store, T defaultValue, Parse parse, Store storeDefault) {
    if (!text.IsEmpty())
        return parse(text);
    if (store)
        storeDefault();
    return defaultValue;
}

} // namespace

int BProfile::ReadInt(WString key, int defaultValue) {
    return ReadOrStore(
        ReadShort(key), m_mode != kProfileReadOnly, defaultValue,
        [&](WString const& text) {
            int value;
            return qv::platform::swscanf(text.CStr(), u"%d", &value) == 1 ? value : defaultValue;
        },
        [&] { WriteInt(key, defaultValue); });
}

double BProfile::ReadDouble(int index, WString key, double defaultValue) {
    return ReadDouble(IndexedKey(key, index), defaultValue);
}

double BProfile::ReadDouble(WString key, double defaultValue) {
    return ReadOrStore(
        ReadShort(key), m_mode != kProfileReadOnly, defaultValue,
        [&](WString const& text) {
            double value;
            return qv::platform::swscanf(text.CStr(), u"%lf", &value) == 1 ? value : defaultValue;
        },
        [&] { WriteDouble(key, defaultValue); });
}

bool BProfile::ReadMem(int index, WString key, void* data, unsigned int size) {
    return ReadMem(IndexedKey(key, index), data, size);
}

bool BProfile::ReadMem(WString key, void* data, unsigned int size) {
    return qv::platform::GetPrivateProfileStructW(m_section.CStr(), key.CStr(), data, size,
                                                  m_path.CStr());
}

bool BProfile::ReadBoolean(WString key, bool defaultValue) {
    return ReadOrStore(
        ReadShort(key), m_mode != kProfileReadOnly, defaultValue,
        [](WString const& text) { return text.IEqual(u"TRUE"); },
        [&] { WriteBoolean(key, defaultValue); });
}

void BProfile::DeleteKey(WString key) {
    CheckMode();
    qv::platform::WritePrivateProfileStringW(m_section.CStr(), key.CStr(), nullptr, m_path.CStr());
}

void BProfile::DeleteSection() {
    CheckMode();
    qv::platform::WritePrivateProfileSectionW(m_section.CStr(), nullptr, m_path.CStr());
}

bool BProfile::ExistsSection(WString section) const {
    char16_t buffer[1024];
    return qv::platform::GetPrivateProfileSectionW(section.CStr(), buffer, 1024, m_path.CStr()) > 0;
}

int BProfile::WriteString(WString const& path, WString const& section, WString const& key,
                          WString const& value) {
    if (!BFile::Exist(path.CStr())) {
        int const created = CreateNew(path, false);
        if (created != 0)
            return created;
    } else if (value.Includes16bitChars()) {
        qv::platform::ConvertPrivateProfileToUnicode(path.CStr());
    }
    return qv::platform::WritePrivateProfileStringW(section.CStr(), key.CStr(), value.CStr(),
                                                    path.CStr())
               ? 0
               : kFileError;
}

int BProfile::CreateNew(WString const& path, bool replaceExisting) {
    BDirEntry const folder = BDirEntry(path).GetPath();
    if (!folder.Exists() && !folder.MakeDir())
        return kFileError;
    return qv::platform::CreateUnicodePrivateProfile(path.CStr(), replaceExisting) ? 0 : kFileError;
}

void BProfile::CheckMode() const {
    if (m_mode == kProfileReadOnly)
        throw BError(BError::kGeneralFailure, u"$IDS_ErrorHint61");
}

WString BProfile::ReadShort(WString const& key) const {
    char16_t buffer[256];
    qv::platform::GetPrivateProfileStringW(m_section.CStr(), key.CStr(), u"", buffer, 256,
                                           m_path.CStr());
    return WString(buffer);
}
