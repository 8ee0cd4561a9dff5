// The file is read once, into the dictionary, and written once, from it: the variants carry
// their own record forms, so reading is a loop of key, type code and value part, and writing
// the reverse. The rewrite goes to memory first and then replaces the file whole, so a crash
// or a full disk leaves the old file rather than a torn one.
#include <cstring>
#include <qv/core/BError.h>
#include <qv/platform/FileReplace.h>
#include <qv/platform/PathText.h>
#include <qv/profiles/BBinProfile.h>
#include <qv/profiles/BVarMemBlock.h>
#include <qv/profiles/TVariant.h>

QV_REGISTER_CLASSNAME(BBinProfile);

namespace {

constexpr unsigned long long kExpectedKeys = 1000;

} // namespace

BBinProfile::BBinProfile(WString path, EProfileMode mode)
    : m_path(path), m_section(u"default"), m_values(kExpectedKeys), m_mode(mode) {
    if (mode != kProfileNew)
        Read();
}

BBinProfile::~BBinProfile() {
    if (m_modified && m_mode != kProfileReadOnly)
        Write();
}

bool BBinProfile::IsValid() const {
    return m_valid;
}

void BBinProfile::SetSection(WString section) {
    m_section = section;
}

WString BBinProfile::GetSection() const {
    return m_section;
}

bool BBinProfile::Put(WString const& key, SP<BVariant> value) {
    CheckMode();
    m_values.Set(MapKey(key), value);
    m_modified = true;
    return true;
}

bool BBinProfile::WriteString(int index, WString key, WString value) {
    return WriteString(IndexedKey(key, index), value);
}

bool BBinProfile::WriteString(WString key, WString value) {
    return Put(key, new TVariant<WString>(value));
}

bool BBinProfile::WriteInt(int index, WString key, int value) {
    return WriteInt(IndexedKey(key, index), value);
}

bool BBinProfile::WriteInt(WString key, int value) {
    return Put(key, new TVariant<int>(value));
}

bool BBinProfile::WriteDouble(int index, WString key, double value) {
    return WriteDouble(IndexedKey(key, index), value);
}

bool BBinProfile::WriteDouble(WString key, double value) {
    return Put(key, new TVariant<double>(value));
}

bool BBinProfile::WriteMem(int index, WString key, void* data, unsigned int size) {
    return WriteMem(IndexedKey(key, index), data, size);
}

bool BBinProfile::WriteMem(WString key, void* data, unsigned int size) {
    return Put(key, new BVarMemBlock(data, size));
}

bool BBinProfile::WriteBoolean(WString key, bool value) {
    return Put(key, new TVariant<bool>(value));
}

template <class T>
T const* BBinProfile::Held(WString const& key) const {
    auto* item = m_values.Find(MapKey(key));
    return item ? dynamic_cast<T const*>(item->m_value.get()) : nullptr;
}

WString BBinProfile::ReadString(int index, WString key, WString defaultValue) {
    return ReadString(IndexedKey(key, index), defaultValue);
}

WString BBinProfile::ReadString(WString key, WString defaultValue) {
    if (auto const* wide = Held<TVariant<WString>>(key))
        return wide->Value();
    if (auto const* narrow = Held<TVariant<BString>>(key))
        return WString(narrow->Value());
    return defaultValue;
}

int BBinProfile::ReadInt(int index, WString key, int defaultValue) {
    return ReadInt(IndexedKey(key, index), defaultValue);
}

int BBinProfile::ReadInt(WString key, int defaultValue) {
    auto const* held = Held<TVariant<int>>(key);
    return held ? held->Value() : defaultValue;
}

double BBinProfile::ReadDouble(int index, WString key, double defaultValue) {
    return ReadDouble(IndexedKey(key, index), defaultValue);
}

double BBinProfile::ReadDouble(WString key, double defaultValue) {
    auto const* held = Held<TVariant<double>>(key);
    return held ? held->Value() : defaultValue;
}

bool BBinProfile::ReadMem(int index, WString key, void* data, unsigned int size) {
    return ReadMem(IndexedKey(key, index), data, size);
}

bool BBinProfile::ReadMem(WString key, void* data, unsigned int size) {
    auto const* block = Held<BVarMemBlock>(key);
    if (!block || block->Size() != size)
        return false;
    if (size)
        std::memcpy(data, block->Data(), size);
    return true;
}

bool BBinProfile::ReadBoolean(WString key, bool defaultValue) {
    auto const* held = Held<TVariant<bool>>(key);
    return held ? held->Value() : defaultValue;
}

void BBinProfile::DeleteKey(WString key) {
    CheckMode();
    if (m_values.Remove(MapKey(key)))
        m_modified = true;
}

void BBinProfile::DeleteSection() {
    CheckMode();
    BArray<WString> doomed;
    for (auto const& item : m_values)
        if (Section(item.m_key).IEqual(m_section))
            doomed.Add(item.m_key);
    for (WString const& key : doomed)
        m_values.Remove(key);
    if (doomed.Count())
        m_modified = true;
}

bool BBinProfile::ExistsSection(WString section) const {
    for (auto const& item : m_values)
        if (Section(item.m_key).IEqual(section))
            return true;
    return false;
}

BArray<WString> BBinProfile::Keys() const {
    BArray<WString> keys;
    for (auto const& item : m_values)
        keys.Add(item.m_key);
    return keys;
}

SP<BVariant> BBinProfile::Value(WString const& mappedKey) const {
    auto* item = m_values.Find(mappedKey);
    return item ? item->m_value : SP<BVariant>();
}

WString BBinProfile::MapKey(WString key) const {
    WString joined;
    joined.Printf(u"[%s]%s", m_section, key);
    return joined.ToLower();
}

WString BBinProfile::Section(WString mappedKey) const {
    return mappedKey.Sub(1).SubCh(0, u']');
}

bool BBinProfile::Read() {
    BFile file(m_path.CStr(), u"rb");
    if (!file)
        return true; // a file that is not there is an empty profile
    std::uint32_t magic = 0;
    if (std::fread(&magic, sizeof magic, 1, file) != 1 ||
        (magic != m_ansiMagic && magic != m_unicodeMagic)) {
        m_valid = false;
        return false;
    }
    return magic == m_ansiMagic ? ReadAnsiFormat(file) : ReadUnicodeFormat(file);
}

template <class ReadKey>
bool BBinProfile::ReadRecords(BFile& file, ReadKey readKey) {
    for (;;) {
        WString key;
        if (!readKey(key) || key.IsEmpty())
            return true; // a damaged key ends the records without an error
        std::uint32_t code = 0;
        SP<BVariant> value;
        if (std::fread(&code, sizeof code, 1, file) == 1)
            value = BVariant::Make(code);
        if (!value) {
            m_values = BDictionary<WString, SP<BVariant>>(kExpectedKeys);
            return false;
        }
        value->ReadValue(file);
        m_values.Set(key, value);
    }
}

bool BBinProfile::ReadAnsiFormat(BFile& file) {
    return ReadRecords(file, [&file](WString& key) {
        BString narrow;
        if (!narrow.FRead(file))
            return false;
        key = WString(narrow);
        return true;
    });
}

bool BBinProfile::ReadUnicodeFormat(BFile& file) {
    return ReadRecords(file, [&file](WString& key) { return key.FRead(file); });
}

bool BBinProfile::Write() const {
    std::string bytes = qv::platform::WrittenBytes([this](std::FILE* stream) {
        std::fwrite(&m_unicodeMagic, sizeof m_unicodeMagic, 1, stream);
        for (auto const& item : m_values) {
            item.m_key.FWrite(stream);
            item.m_value->WriteTo(stream);
        }
    });
    if (bytes.size() < sizeof m_unicodeMagic)
        return false;
    return qv::platform::ReplaceFile(qv::platform::NativePath(m_path.CStr()), bytes);
}

void BBinProfile::CheckMode() const {
    if (m_mode == kProfileReadOnly)
        BError(BError::kGeneralFailure, u"$IDS_ErrorHint61").Throw();
}
