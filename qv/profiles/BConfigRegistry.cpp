#include <array>
#include <qv/core/BError.h>
#include <qv/core/Narrowing.h>
#include <qv/platform/Registry.h>
#include <qv/profiles/BConfigRegistry.h>
#include <vector>

using namespace qv::platform;

QV_REGISTER_CLASSNAME(BConfigRegistry);

namespace {

constexpr std::uint32_t kReadWrite = 0x2001f;
constexpr std::uint32_t kReadOnly = 0x20019;

struct RootName {
    char16_t const* name;
    HKEY root;
};

// Tried in this order: the five short names, then the five long ones.
std::array<RootName, 10> const kRootNames = {{
    {u"HKCR", HKEY_CLASSES_ROOT},
    {u"HKLM", HKEY_LOCAL_MACHINE},
    {u"HKCU", HKEY_CURRENT_USER},
    {u"HKCC", HKEY_CURRENT_CONFIG},
    {u"HKU", HKEY_USERS},
    {u"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
    {u"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
    {u"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
    {u"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
    {u"HKEY_USERS", HKEY_USERS},
}};

// The root a path names, the path losing the name and the character behind it, unseen.
HKEY ResolveRoot(WString& path) {
    for (RootName const& root : kRootNames) {
        if (path.StartsWith(root.name)) {
            WString::size_type skip = WString(root.name).Length() + 1;
            path = skip >= path.Length() ? WString() : path.Sub(skip);
            return root.root;
        }
    }
    return HKEY_CURRENT_USER;
}

// Opens or makes a key for reading and writing, and for reading alone where writing is
// refused. Null on failure.
HKEY OpenOrCreate(HKEY parent, WString const& path) {
    HKEY key = nullptr;
    long result =
        RegCreateKeyExW(parent, path.CStr(), 0, nullptr, 0, kReadWrite, nullptr, &key, nullptr);
    if (result == ERROR_ACCESS_DENIED)
        result =
            RegCreateKeyExW(parent, path.CStr(), 0, nullptr, 0, kReadOnly, nullptr, &key, nullptr);
    return result == ERROR_SUCCESS ? key : nullptr;
}

HKEY Handle(void* key) {
    return static_cast<HKEY>(key);
}

} // namespace

BConfigRegistry::BConfigRegistry(WString path) {
    HKEY root = ResolveRoot(path);
    m_key = path.IsEmpty() ? root : OpenOrCreate(root, path);
    if (!m_key)
        BError(BConfig::kFailure).Throw();
}

BConfigRegistry::~BConfigRegistry() {
    if (m_key)
        RegCloseKey(Handle(m_key));
}

SP<BConfig> BConfigRegistry::Child(WString name) const {
    if (name.IsEmpty() || !m_key)
        BError(kFailure).Throw();
    HKEY key = OpenOrCreate(Handle(m_key), name);
    if (!key)
        BError(kFailure).Throw();
    SP<BConfigRegistry> child = new BConfigRegistry;
    child->m_key = key;
    return child;
}

namespace {

// The names that an enumeration gives, with a buffer for the longest one.
template <class Enumerate>
int QueryNames(void* key, bool subkeys, BArray<WString>& names, Enumerate keep) {
    std::uint32_t count = 0, longest = 0;
    long info = subkeys ? RegQueryInfoKeyW(Handle(key), nullptr, nullptr, nullptr, &count, &longest,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)
                        : RegQueryInfoKeyW(Handle(key), nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, &count, &longest, nullptr, nullptr, nullptr);
    if (!key || info != ERROR_SUCCESS)
        return BConfig::kFailure;
    names.Clear();
    std::vector<char16_t> buffer(longest + 1);
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t length = longest + 1;
        std::uint32_t type = REG_NONE;
        long result = subkeys ? RegEnumKeyExW(Handle(key), i, buffer.data(), &length, nullptr,
                                              nullptr, nullptr, nullptr)
                              : RegEnumValueW(Handle(key), i, buffer.data(), &length, nullptr,
                                              &type, nullptr, nullptr);
        if (result == ERROR_SUCCESS && keep(type))
            names.Add(WString(buffer.data()));
    }
    return 0;
}

} // namespace

int BConfigRegistry::QuerySubSections(BArray<WString>& names) const {
    return QueryNames(m_key, true, names, [](std::uint32_t) { return true; });
}

int BConfigRegistry::QueryKeys(BArray<WString>& names) const {
    return QueryNames(m_key, false, names, [](std::uint32_t type) { return type == REG_SZ; });
}

int BConfigRegistry::ReadString(WString name, WString& value) const {
    if (!m_key)
        return kFailure;
    std::uint32_t type = REG_NONE, size = 0;
    if (RegQueryValueExW(Handle(m_key), name.CStr(), nullptr, &type, nullptr, &size) !=
            ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ))
        return kFailure;
    if (size == 0) {
        value = WString();
        return 0;
    }
    // One unit more than the data, zeroed, so that data without a final zero ends where it
    // was stored.
    std::vector<char16_t> text(size / 2 + 1, u'\0');
    if (RegQueryValueExW(Handle(m_key), name.CStr(), nullptr, &type,
                         reinterpret_cast<unsigned char*>(text.data()), &size) != ERROR_SUCCESS) {
        value = WString();
        return kFailure;
    }
    value = WString(text.data());
    return 0;
}

int BConfigRegistry::WriteString(WString name, WString value) {
    if (!m_key)
        return kFailure;
    unsigned int bytes = Sizet_uint(value.Length() * 2 + 2);
    long result = RegSetValueExW(Handle(m_key), name.CStr(), 0, REG_SZ,
                                 reinterpret_cast<unsigned char const*>(value.CStr()), bytes);
    return result == ERROR_SUCCESS ? 0 : kFailure;
}

void BConfigRegistry::SetStoreDirectory(WString directory) {
    SetRegistryDirectory(directory.CStr());
}

WString BConfigRegistry::StoreDirectory() {
    return WString(RegistryDirectory().c_str());
}
