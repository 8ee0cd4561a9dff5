// The store keeps one parsed tree per root, revalidated against the file's stamp before every
// operation, so a value another process wrote is seen by the next read. A write takes the
// file's lock, re-reads the file if it changed, applies the change to the tree, prints the
// whole root and replaces the file. Handles name a key by its path, not by a node of the tree,
// because the tree is rebuilt whenever the file changes under it.
//
// The printed form follows regedit's export: a key line for every key, the root first and
// subkeys depth-first in the order RegEnumKeyExW lists them, values in creation order; text
// values quoted with '\' and '"' escaped, 32-bit numbers as dword:xxxxxxxx, everything else as
// hex bytes wrapped to lines of at most 80 characters the way regedit wraps them.
#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <pwd.h>
#include <qv/platform/CodePage.h>
#include <qv/platform/FileReplace.h>
#include <qv/platform/PathText.h>
#include <qv/platform/Registry.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideNumbers.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace qv::platform {

namespace {

constexpr char16_t kHeader[] = u"Windows Registry Editor Version 5.00";
constexpr char16_t kHeader4[] = u"REGEDIT4";
constexpr std::array<char16_t const*, 6> kRootNames = {
    u"HKEY_CLASSES_ROOT",  u"HKEY_CURRENT_USER", u"HKEY_LOCAL_MACHINE", u"HKEY_USERS", nullptr,
    u"HKEY_CURRENT_CONFIG"};

// ---- names --------------------------------------------------------------------------------

// Registry names compare as Windows compares them: each unit in upper case.
std::u16string Folded(std::u16string_view name) {
    std::u16string folded(name);
    for (char16_t& c : folded)
        c = ToUpperW(c);
    return folded;
}

std::vector<std::u16string> SplitPath(std::u16string_view path) {
    std::vector<std::u16string> names;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find(u'\\', start);
        if (end == std::u16string_view::npos)
            end = path.size();
        if (end > start)
            names.emplace_back(path.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

// ---- the tree -----------------------------------------------------------------------------

struct Value {
    std::u16string name;
    std::uint32_t type = REG_NONE;
    std::string data;
};

struct Key {
    std::u16string name;
    std::vector<Value> values;                               // creation order
    std::map<std::u16string, std::unique_ptr<Key>> children; // by folded name: Windows' order

    Key* Child(std::u16string_view childName) const {
        auto it = children.find(Folded(childName));
        return it == children.end() ? nullptr : it->second.get();
    }
    Key* AddChild(std::u16string_view childName) {
        auto& slot = children[Folded(childName)];
        if (!slot) {
            slot = std::make_unique<Key>();
            slot->name = childName;
        }
        return slot.get();
    }
    Value* FindValue(std::u16string_view valueName) {
        std::u16string folded = Folded(valueName);
        for (Value& value : values)
            if (Folded(value.name) == folded)
                return &value;
        return nullptr;
    }
    void SetValue(std::u16string_view valueName, std::uint32_t type, std::string_view data) {
        Value* value = FindValue(valueName);
        if (!value) {
            values.push_back({std::u16string(valueName), type, {}});
            value = &values.back();
        }
        value->type = type;
        value->data = data;
    }
    void RemoveValue(std::u16string_view valueName) {
        std::u16string folded = Folded(valueName);
        std::erase_if(values, [&](Value const& v) { return Folded(v.name) == folded; });
    }
};

Key* Walk(Key* key, std::vector<std::u16string> const& path, bool create) {
    for (auto const& name : path) {
        Key* next = key->Child(name);
        if (!next && create)
            next = key->AddChild(name);
        if (!next)
            return nullptr;
        key = next;
    }
    return key;
}

// ---- printing -----------------------------------------------------------------------------

void Escaped(std::u16string& out, std::u16string_view text) {
    for (char16_t c : text) {
        if (c == u'\\' || c == u'"')
            out += u'\\';
        out += c;
    }
}

// Text data that regedit can print in quotes: whole units, one final terminator at most and
// no other zero unit. Anything else keeps its bytes through the hex form.
bool IsPlainText(std::string_view data, std::u16string& text) {
    if (data.size() % 2 != 0)
        return false;
    text.resize(data.size() / 2);
    std::memcpy(text.data(), data.data(), data.size());
    if (!text.empty() && text.back() == 0)
        text.pop_back();
    return text.find(u'\0') == std::u16string::npos;
}

void HexBytes(std::u16string& out, std::size_t lineLength, std::string_view data) {
    constexpr std::size_t kWrapAt = 77; // two spaces and 25 bytes make a full line
    static constexpr char16_t kDigits[] = u"0123456789abcdef";
    for (std::size_t i = 0; i < data.size(); ++i) {
        auto byte = static_cast<unsigned char>(data[i]);
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
        if (i + 1 == data.size())
            break;
        out += u',';
        lineLength += 3;
        if (lineLength >= kWrapAt) {
            out += u"\\\r\n  ";
            lineLength = 2;
        }
    }
}

void PrintValue(std::u16string& out, Value const& value) {
    std::size_t lineStart = out.size();
    if (value.name.empty()) {
        out += u'@';
    } else {
        out += u'"';
        Escaped(out, value.name);
        out += u'"';
    }
    out += u'=';
    std::u16string text;
    if (value.type == REG_SZ && IsPlainText(value.data, text)) {
        out += u'"';
        Escaped(out, text);
        out += u'"';
    } else if (value.type == REG_DWORD && value.data.size() == 4) {
        std::uint32_t number;
        std::memcpy(&number, value.data.data(), 4);
        char digits[16];
        std::snprintf(digits, sizeof digits, "%08x", number);
        out += u"dword:";
        out.append(digits, digits + 8);
    } else {
        if (value.type == REG_BINARY) {
            out += u"hex:";
        } else {
            char type[16];
            std::snprintf(type, sizeof type, "hex(%x):", value.type);
            out.append(type, type + std::strlen(type));
        }
        HexBytes(out, out.size() - lineStart, value.data);
    }
    out += u"\r\n";
}

void PrintKey(std::u16string& out, Key const& key, std::u16string const& path) {
    out += u'[' + path + u"]\r\n";
    for (Value const& value : key.values)
        PrintValue(out, value);
    out += u"\r\n";
    for (auto const& [folded, child] : key.children)
        PrintKey(out, *child, path + u'\\' + child->name);
}

std::string PrintRoot(Key const& root, char16_t const* rootName) {
    std::u16string text = kHeader;
    text += u"\r\n\r\n";
    PrintKey(text, root, rootName);
    std::string bytes = "\xFF\xFE";
    bytes.append(reinterpret_cast<char const*>(text.data()), text.size() * 2);
    return bytes;
}

// ---- parsing ------------------------------------------------------------------------------

std::u16string Decode(std::string_view bytes) {
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE) {
        std::u16string text((bytes.size() - 2) / 2, u'\0');
        std::memcpy(text.data(), bytes.data() + 2, text.size() * 2);
        return text;
    }
    if (bytes.empty())
        return {};
    int length = MultiByteToWideChar(bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    MultiByteToWideChar(bytes.data(), static_cast<int>(bytes.size()), text.data(), length);
    return text;
}

// Logical lines: CR LF or LF ends a line, and a line ending in '\' inside hex data goes on
// with the next one, whose leading blanks are dropped.
std::vector<std::u16string> Lines(std::u16string_view text) {
    std::vector<std::u16string> lines;
    std::u16string current;
    bool continued = false;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(u'\n', start);
        if (end == std::u16string_view::npos)
            end = text.size();
        std::u16string_view line = text.substr(start, end - start);
        if (!line.empty() && line.back() == u'\r')
            line.remove_suffix(1);
        if (continued)
            line.remove_prefix(std::min(line.find_first_not_of(u" \t"), line.size()));
        current += line;
        continued = !current.empty() && current.back() == u'\\' &&
                    current.find(u"=hex") != std::u16string::npos;
        if (continued)
            current.pop_back();
        else
            lines.push_back(std::move(current)), current.clear();
        start = end + 1;
    }
    if (!current.empty())
        lines.push_back(std::move(current));
    return lines;
}

// A quoted name or text at pos; pos moves behind the closing quote. False when unterminated.
bool Quoted(std::u16string_view line, std::size_t& pos, std::u16string& text) {
    text.clear();
    for (++pos; pos < line.size(); ++pos) {
        char16_t c = line[pos];
        if (c == u'"') {
            ++pos;
            return true;
        }
        if (c == u'\\' && pos + 1 < line.size())
            c = line[++pos];
        text += c;
    }
    return false;
}

bool HexList(std::u16string_view text, std::string& bytes) {
    bytes.clear();
    std::size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && (text[pos] == u' ' || text[pos] == u'\t'))
            ++pos;
        if (pos == text.size())
            break;
        int high = HexDigitValue(text[pos]);
        int low = pos + 1 < text.size() ? HexDigitValue(text[pos + 1]) : -1;
        if (high < 0)
            return false;
        if (low < 0) { // a single digit
            bytes += static_cast<char>(high);
            ++pos;
        } else {
            bytes += static_cast<char>(high * 16 + low);
            pos += 2;
        }
        while (pos < text.size() && (text[pos] == u' ' || text[pos] == u'\t'))
            ++pos;
        if (pos < text.size() && text[pos] != u',')
            return false;
        ++pos;
    }
    return true;
}

bool ParseData(std::u16string_view data, std::uint32_t& type, std::string& bytes) {
    if (!data.empty() && data.front() == u'"') {
        std::size_t pos = 0;
        std::u16string text;
        if (!Quoted(data, pos, text))
            return false;
        text += u'\0';
        type = REG_SZ;
        bytes.assign(reinterpret_cast<char const*>(text.data()), text.size() * 2);
        return true;
    }
    if (data.starts_with(u"dword:")) {
        std::u16string_view digits = data.substr(6);
        if (digits.empty() || digits.size() > 8)
            return false;
        std::uint32_t number = 0;
        for (char16_t c : digits) {
            int digit = HexDigitValue(c);
            if (digit < 0)
                return false;
            number = number * 16 + static_cast<std::uint32_t>(digit);
        }
        type = REG_DWORD;
        bytes.assign(reinterpret_cast<char const*>(&number), 4);
        return true;
    }
    if (data.starts_with(u"hex:")) {
        type = REG_BINARY;
        return HexList(data.substr(4), bytes);
    }
    if (data.starts_with(u"hex(")) {
        std::size_t close = data.find(u"):");
        if (close == std::u16string_view::npos || close == 4 || close > 12)
            return false;
        std::uint32_t number = 0;
        for (char16_t c : data.substr(4, close - 4)) {
            int digit = HexDigitValue(c);
            if (digit < 0)
                return false;
            number = number * 16 + static_cast<std::uint32_t>(digit);
        }
        type = number;
        return HexList(data.substr(close + 2), bytes);
    }
    return false;
}

void ParseValueLine(std::u16string_view line, RegistryFileSink& sink) {
    std::size_t pos = 0;
    std::u16string name;
    if (line.front() == u'@') {
        pos = 1;
    } else if (!Quoted(line, pos, name)) {
        return;
    }
    while (pos < line.size() && line[pos] == u' ')
        ++pos;
    if (pos >= line.size() || line[pos] != u'=')
        return;
    std::u16string_view data = line.substr(pos + 1);
    while (!data.empty() && data.front() == u' ')
        data.remove_prefix(1);
    if (data == u"-") {
        sink.OnValue(name, REG_NONE, {}, true);
        return;
    }
    std::uint32_t type = REG_NONE;
    std::string bytes;
    if (ParseData(data, type, bytes))
        sink.OnValue(name, type, bytes, false);
}

// ---- the store ----------------------------------------------------------------------------

struct Hive {
    Key root;
    FileStamp stamp;
    bool writable = true; // false for a file that is there but is no export file
};

struct OpenKey {
    int root;
    std::vector<std::u16string> path;
    bool writable;
};

class Store {
public:
    std::mutex mutex;
    std::u16string directory;
    std::array<Hive, kRootNames.size()> hives;

    std::string FileOf(int root) const {
        std::u16string dir = directory.empty() ? DefaultDirectory() : directory;
        return NativePath(dir + u'/' + kRootNames[static_cast<std::size_t>(root)] + u".reg");
    }

    // Brings the tree of a root up to the file on disk.
    Hive& Fresh(int root) {
        Hive& hive = hives[static_cast<std::size_t>(root)];
        std::string file = FileOf(root);
        FileStamp stamp = StampOf(file);
        if (stamp == hive.stamp)
            return hive;
        hive.root = Key{};
        hive.root.name = kRootNames[static_cast<std::size_t>(root)];
        hive.stamp = stamp;
        hive.writable = true;
        std::string bytes;
        if (stamp.size >= 0 && ReadWholeFile(file, bytes))
            hive.writable = Load(hive.root, bytes) || bytes.empty();
        return hive;
    }

    // Applies change to the tree of a root under the file's lock and writes the file.
    template <class Change>
    long Write(int root, Change change) {
        std::string file = FileOf(root);
        MakeDirectory(file);
        FileLock lock(file);
        Hive& hive = Fresh(root);
        if (!lock.Held() || !hive.writable || !CanReplaceFile(file))
            return ERROR_ACCESS_DENIED;
        if (long result = change(hive.root); result != ERROR_SUCCESS)
            return result;
        if (!ReplaceFile(file, PrintRoot(hive.root, kRootNames[static_cast<std::size_t>(root)]))) {
            hive.stamp = FileStamp{-2, -2}; // the tree holds a change the file lacks: re-read
            return ERROR_ACCESS_DENIED;
        }
        hive.stamp = StampOf(file);
        return ERROR_SUCCESS;
    }

    bool CanWrite(int root) {
        std::string file = FileOf(root);
        MakeDirectory(file);
        return Fresh(root).writable && CanReplaceFile(file);
    }

private:
    static std::u16string DefaultDirectory() {
        // The XDG default, found without reading the environment: the library reads none.
        struct passwd entry;
        struct passwd* found = nullptr;
        char buffer[4096];
        std::string home = "/tmp";
        if (::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found)
            home = found->pw_dir;
        return Utf8ToUtf16(home + "/.config/qvcore/registry");
    }

    static void MakeDirectory(std::string const& file) {
        std::string dir = file.substr(0, file.rfind('/'));
        for (std::size_t slash = 1; slash != std::string::npos;) {
            slash = dir.find('/', slash + 1);
            ::mkdir(dir.substr(0, slash).c_str(), 0755);
        }
    }

    static bool Load(Key& root, std::string const& bytes) {
        struct Builder : RegistryFileSink {
            Key& root;
            Key* current = nullptr;
            explicit Builder(Key& r) : root(r) {}
            void OnKey(std::u16string_view path, bool remove) override {
                current = nullptr;
                std::vector<std::u16string> names = SplitPath(path);
                if (names.empty() || Folded(names.front()) != Folded(root.name))
                    return; // another root's key: not this file's
                names.erase(names.begin());
                if (remove) {
                    if (names.empty())
                        return;
                    std::u16string last = names.back();
                    names.pop_back();
                    if (auto* parent = Walk(&root, names, false))
                        parent->children.erase(Folded(last));
                    return;
                }
                current = Walk(&root, names, true);
            }
            void OnValue(std::u16string_view name, std::uint32_t type, std::string_view data,
                         bool remove) override {
                if (!current)
                    return;
                if (remove)
                    current->RemoveValue(name);
                else
                    current->SetValue(name, type, data);
            }
        } builder(root);
        return ParseRegistryFile(bytes, builder);
    }
};

Store& TheStore() {
    static Store store;
    return store;
}

int RootIndex(HKEY key) {
    auto raw = reinterpret_cast<std::uintptr_t>(key);
    if (raw < 0x80000000u || raw > 0x80000005u || !kRootNames[raw - 0x80000000u])
        return -1;
    return static_cast<int>(raw - 0x80000000u);
}

// The open key behind a handle: a predefined root or one of ours. Null for anything else.
bool Resolve(HKEY key, OpenKey& open) {
    if (!key)
        return false;
    if (int root = RootIndex(key); root >= 0) {
        open = {root, {}, true};
        return true;
    }
    open = *reinterpret_cast<OpenKey*>(key);
    return true;
}

// Runs read on the key that open names, under the store's lock, with the root's tree brought up
// to date with its file first. ERROR_KEY_DELETED when the key has gone since it was opened.
template <class Read>
long ReadKey(OpenKey const& open, Read read) {
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    Key* node = Walk(&store.Fresh(open.root).root, open.path, false);
    return node ? read(*node) : ERROR_KEY_DELETED;
}

bool Fits(std::uint32_t* capacity, std::size_t needed) {
    bool fits = capacity && *capacity >= needed;
    if (capacity)
        *capacity = static_cast<std::uint32_t>(needed);
    return fits;
}

// A name as the enumerations hand it out: with its terminator into a buffer of *length units,
// *length then the name's length without it; a buffer too small gets ERROR_MORE_DATA.
int CopyName(std::u16string const& text, char16_t* name, std::uint32_t* length) {
    if (!name || *length <= text.size())
        return ERROR_MORE_DATA;
    std::copy(text.begin(), text.end(), name);
    name[text.size()] = 0;
    *length = static_cast<std::uint32_t>(text.size());
    return ERROR_SUCCESS;
}

// A value's type and data as the query and the enumeration hand them out: without a buffer
// only the size is told; a buffer too small gets nothing but the size and ERROR_MORE_DATA.
int CopyData(Value const& value, std::uint32_t* type, unsigned char* data,
             std::uint32_t* dataLength) {
    if (type)
        *type = value.type;
    if (!data) {
        if (dataLength)
            *dataLength = static_cast<std::uint32_t>(value.data.size());
        return ERROR_SUCCESS;
    }
    if (!Fits(dataLength, value.data.size()))
        return ERROR_MORE_DATA;
    std::memcpy(data, value.data.data(), value.data.size());
    return ERROR_SUCCESS;
}

} // namespace

bool ParseRegistryFile(std::string_view bytes, RegistryFileSink& sink) {
    std::vector<std::u16string> lines = Lines(Decode(bytes));
    auto first = std::find_if(lines.begin(), lines.end(), [](std::u16string const& line) {
        return line.find_first_not_of(u" \t") != std::u16string::npos;
    });
    if (first == lines.end() || (*first != kHeader && *first != kHeader4))
        return false;
    for (auto it = std::next(first); it != lines.end(); ++it) {
        std::u16string_view line = *it;
        while (!line.empty() && (line.front() == u' ' || line.front() == u'\t'))
            line.remove_prefix(1);
        if (line.empty() || line.front() == u';')
            continue;
        if (line.front() == u'[') {
            std::size_t close = line.rfind(u']');
            if (close == std::u16string_view::npos)
                continue;
            bool remove = line.size() > 1 && line[1] == u'-';
            sink.OnKey(line.substr(remove ? 2 : 1, close - (remove ? 2 : 1)), remove);
        } else if (line.front() == u'@' || line.front() == u'"') {
            ParseValueLine(line, sink);
        }
    }
    return true;
}

long RegCreateKeyExW(HKEY key, char16_t const* subKey, std::uint32_t, char16_t*, std::uint32_t,
                     std::uint32_t access, void const*, HKEY* result, std::uint32_t* disposition) {
    OpenKey parent;
    if (!result || !Resolve(key, parent))
        return ERROR_INVALID_HANDLE;
    std::u16string_view sub = subKey ? subKey : u"";
    if (sub.starts_with(u'\\'))
        return ERROR_INVALID_PARAMETER;
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    bool wantsWrite = (access & (KEY_SET_VALUE | KEY_CREATE_SUB_KEY)) != 0;
    if (wantsWrite && !store.CanWrite(parent.root))
        return ERROR_ACCESS_DENIED;
    auto open = std::make_unique<OpenKey>(parent);
    open->writable = wantsWrite;
    for (auto& name : SplitPath(sub))
        open->path.push_back(std::move(name));
    bool exists = Walk(&store.Fresh(parent.root).root, open->path, false) != nullptr;
    if (!exists) {
        long created = store.Write(parent.root, [&](Key& root) {
            Walk(&root, open->path, true);
            return ERROR_SUCCESS;
        });
        if (created != ERROR_SUCCESS)
            return created;
    }
    if (disposition)
        *disposition = exists ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    *result = reinterpret_cast<HKEY>(open.release());
    return ERROR_SUCCESS;
}

long RegOpenKeyExW(HKEY key, char16_t const* subKey, std::uint32_t, std::uint32_t access,
                   HKEY* result) {
    OpenKey parent;
    if (!result || !Resolve(key, parent))
        return ERROR_INVALID_HANDLE;
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    auto open = std::make_unique<OpenKey>(parent);
    open->writable = (access & KEY_SET_VALUE) != 0;
    for (auto& name : SplitPath(subKey ? subKey : u""))
        open->path.push_back(std::move(name));
    if (!Walk(&store.Fresh(parent.root).root, open->path, false))
        return ERROR_FILE_NOT_FOUND;
    if (open->writable && !store.CanWrite(parent.root))
        return ERROR_ACCESS_DENIED;
    *result = reinterpret_cast<HKEY>(open.release());
    return ERROR_SUCCESS;
}

long RegCloseKey(HKEY key) {
    if (!key)
        return ERROR_INVALID_HANDLE;
    if (RootIndex(key) < 0)
        delete reinterpret_cast<OpenKey*>(key);
    return ERROR_SUCCESS;
}

long RegQueryInfoKeyW(HKEY key, char16_t*, std::uint32_t*, std::uint32_t*, std::uint32_t* subKeys,
                      std::uint32_t* maxSubKeyLength, std::uint32_t*, std::uint32_t* values,
                      std::uint32_t* maxValueNameLength, std::uint32_t* maxValueLength,
                      std::uint32_t*, void*) {
    OpenKey open;
    if (!Resolve(key, open))
        return ERROR_INVALID_HANDLE;
    return ReadKey(open, [&](Key& node) {
        std::size_t longestKey = 0, longestName = 0, longestData = 0;
        for (auto const& [folded, child] : node.children)
            longestKey = std::max(longestKey, child->name.size());
        for (Value const& value : node.values) {
            longestName = std::max(longestName, value.name.size());
            longestData = std::max(longestData, value.data.size());
        }
        auto set = [](std::uint32_t* out, std::size_t n) {
            if (out)
                *out = static_cast<std::uint32_t>(n);
        };
        set(subKeys, node.children.size());
        set(maxSubKeyLength, longestKey);
        set(values, node.values.size());
        set(maxValueNameLength, longestName);
        set(maxValueLength, longestData);
        return ERROR_SUCCESS;
    });
}

long RegEnumValueW(HKEY key, std::uint32_t index, char16_t* name, std::uint32_t* nameLength,
                   std::uint32_t*, std::uint32_t* type, unsigned char* data,
                   std::uint32_t* dataLength) {
    OpenKey open;
    if (!Resolve(key, open))
        return ERROR_INVALID_HANDLE;
    if (!nameLength)
        return ERROR_INVALID_PARAMETER;
    return ReadKey(open, [&](Key& node) {
        if (index >= node.values.size())
            return ERROR_NO_MORE_ITEMS;
        Value const& value = node.values[index];
        int const named = CopyName(value.name, name, nameLength);
        return named == ERROR_SUCCESS ? CopyData(value, type, data, dataLength) : named;
    });
}

long RegEnumKeyExW(HKEY key, std::uint32_t index, char16_t* name, std::uint32_t* nameLength,
                   std::uint32_t*, char16_t*, std::uint32_t*, void*) {
    OpenKey open;
    if (!Resolve(key, open))
        return ERROR_INVALID_HANDLE;
    if (!nameLength || !name)
        return ERROR_INVALID_PARAMETER;
    return ReadKey(open, [&](Key& node) {
        if (index >= node.children.size())
            return ERROR_NO_MORE_ITEMS;
        return CopyName(std::next(node.children.begin(), index)->second->name, name, nameLength);
    });
}

long RegQueryValueExW(HKEY key, char16_t const* name, std::uint32_t*, std::uint32_t* type,
                      unsigned char* data, std::uint32_t* dataLength) {
    OpenKey open;
    if (!Resolve(key, open))
        return ERROR_INVALID_HANDLE;
    if (data && !dataLength)
        return ERROR_INVALID_PARAMETER;
    return ReadKey(open, [&](Key& node) {
        Value const* value = node.FindValue(name ? name : u"");
        if (!value)
            return ERROR_FILE_NOT_FOUND;
        return CopyData(*value, type, data, dataLength);
    });
}

long RegSetValueExW(HKEY key, char16_t const* name, std::uint32_t, std::uint32_t type,
                    unsigned char const* data, std::uint32_t dataLength) {
    OpenKey open;
    if (!Resolve(key, open))
        return ERROR_INVALID_HANDLE;
    if (!open.writable)
        return ERROR_ACCESS_DENIED;
    if (!data && dataLength)
        return ERROR_INVALID_PARAMETER;
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    std::string_view bytes(reinterpret_cast<char const*>(data), data ? dataLength : 0);
    return store.Write(open.root, [&](Key& root) {
        Key* node = Walk(&root, open.path, false);
        if (!node)
            return ERROR_KEY_DELETED;
        node->SetValue(name ? name : u"", type, bytes);
        return ERROR_SUCCESS;
    });
}

void SetRegistryDirectory(std::u16string_view directory) {
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    store.directory = directory;
    for (Hive& hive : store.hives)
        hive.stamp = FileStamp{-2, -2}; // re-read from the new place
}

std::u16string RegistryDirectory() {
    Store& store = TheStore();
    std::lock_guard<std::mutex> guard(store.mutex);
    return store.directory;
}

} // namespace qv::platform
