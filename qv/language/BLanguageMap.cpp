// Implementation details of BLanguageMap.
//
// One hash table keyed case-blind holds the entries: key to its current and its default text.
// Its hash agrees with ICmp (texts ICmp calls equal hash alike) and its equality is ICmp, so
// it holds the keys a case-blind ordered map would, while an Add or a lookup costs one hash and
// about one comparison instead of a tree search whose nodes leave the cache as the map grows.
// The order of keys matters only where entries are listed (export, Entries, TranslateBack):
// those sort what they list by ICmp, which gives the order of the ordered map.
// Beside it a reverse index lists, for each default text (again case-blind), the keys without
// underscore that carry it: Add asks it whether a one-word key's default text is taken already,
// which would otherwise be a walk over the whole map per entry and make filling quadratic.
// TranslateBack answers the same question from the index, and walks the map for every other
// prefix and for the current map.
//
// Language files are read one 16-bit unit at a time through the wide stream functions, by the
// cell grammar: empty, plain up to a tab or line feed, or quoted with doubled quotes. The reader
// stops at the end of the file and at a read error alike, so a damaged stream never loops.
// It hands each cell over as soon as it is read: the import and the merge hash the key there,
// once, and start loading the memory their search will touch while the rest of the line is
// read, so that a large table's searches do not wait for it.
#include <qv/language/BLanguageMap.h>
// Own header above, what it builds on below.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <qv/core/files/BFile.h>
#include <qv/platform/FileSystem.h>
#include <qv/platform/TextHash.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

QV_REGISTER_CLASSNAME(BLanguageMap);

namespace {

using qv::platform::kWEOF;

constexpr char16_t kTab = u'\t';
constexpr char16_t kLineFeed = u'\n';
constexpr char16_t kQuote = u'"';
constexpr unsigned short kEndOfFile = 0xFFFF;
constexpr unsigned long long kCellsPerRecord = 3;
constexpr char16_t kNewEntry[] = u"new entry!";

SP<BLanguageMap> registered;

// The end of a stream as the readers see it: the end of the file, or a read error, after which
// nothing more arrives either.
bool AtEnd(std::FILE* stream) {
    return std::feof(stream) || std::ferror(stream);
}

// A record whose first cell starts with a dollar sign carries a key; any other is a comment.
bool IsKeyCell(WString const& cell) {
    return !cell.IsEmpty() && cell[0] == u'$';
}

// Directory, backslash, name: the form every language-file path takes.
WString PathIn(WString const& directory, char16_t const* name) {
    return directory + u"\\" + name;
}

// The names of the regular files that match directory\pattern, in the order the directory lists
// them. Directories ("." and ".." match "*.*") are no language files and are left out.
template <class Visit>
bool ForEachMatchingFile(WString const& directory, WString const& pattern, Visit visit) {
    using namespace qv::platform;
    WIN32_FIND_DATAW found;
    HANDLE const find = FindFirstFileW(PathIn(directory, pattern).CStr(), &found);
    if (find == INVALID_HANDLE_VALUE)
        return false;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            visit(found.cFileName);
    } while (FindNextFileW(find, &found));
    FindClose(find);
    return true;
}

// Holds a stream's lock for a whole read: each unit read then takes it again as a nested lock,
// which costs no atomic operation.
class HeldStream {
public:
    explicit HeldStream(std::FILE* stream) : m_stream(stream) { qv::platform::_lock_file(stream); }
    ~HeldStream() { qv::platform::_unlock_file(m_stream); }
    HeldStream(HeldStream const&) = delete;
    HeldStream& operator=(HeldStream const&) = delete;

private:
    std::FILE* m_stream;
};

// Collects a file's lines and writes them in large pieces: the wide write converts and locks per
// call, which would dominate an export or a merge written cell by cell.
class LineWriter {
public:
    explicit LineWriter(std::FILE* stream) : m_stream(stream) {}
    ~LineWriter() { Flush(); }
    LineWriter(LineWriter const&) = delete;
    LineWriter& operator=(LineWriter const&) = delete;

    LineWriter& operator<<(WString const& text) { return *this << text.CStr(); }
    LineWriter& operator<<(char16_t const* text) {
        m_buffer.append(text);
        if (m_buffer.size() >= kFlushAt)
            Flush();
        return *this;
    }

private:
    static constexpr std::size_t kFlushAt = 1 << 15;

    void Flush() {
        if (!m_buffer.empty())
            qv::platform::fputws16(m_buffer.c_str(), m_stream);
        m_buffer.clear();
    }

    std::FILE* m_stream;
    std::u16string m_buffer;
};

// The units of one cell while it is read. A cell of a language file is a short text, so its
// units gather on the stack; only a longer one spills into the heap. A heap buffer per cell
// would cost three allocations per line, and zeroing it would push a kilobyte per cell through
// the cache, where the table's slots should stay.
class CellUnits {
public:
    void Add(char16_t unit) {
        if (m_count < kOnStack)
            m_head[m_count++] = unit;
        else
            m_rest.push_back(unit);
    }
    void CopyTo(WString& cell) {
        if (m_rest.empty())
            return cell.CopyN(m_count, m_head);
        m_rest.insert(0, m_head, m_count);
        cell.CopyN(m_rest.size(), m_rest.data());
    }

private:
    static constexpr std::size_t kOnStack = 512;

    char16_t m_head[kOnStack];
    std::size_t m_count = 0;
    std::u16string m_rest;
};

} // namespace

namespace {

// The texts of one key. Defined here, not inside State, so that the map's code stays inside the
// library: a type nested in an exported class would be exported with every instantiation.
struct Texts {
    WString key;  // as last added: the table's own key keeps the spelling that came first
    WString text; // of the current language
    WString defaultText;
};

// What a table keeps of a key's hash. Callers that know a key early compute it once and hand
// it to Prefetch, try_emplace and find.
std::uint32_t Tag(WString const& key) {
    return static_cast<std::uint32_t>(qv::platform::HashForCmpIW(key.CStr()));
}

// A table keyed case-blind as ICmp decides: keys that ICmp calls equal are one key. Items stand
// in a vector in order of addition; beside it an open-addressed array of slots, each the low 32
// bits of the item's hash and its index, is all a search touches until a hash matches. At 20,000
// keys the slots take 512 KB: one miss per search, which a prefetch can hide, where a node-based
// table's nodes, spread between the strings, cost several. Items are never erased one by one,
// only all at once.
template <class V>
class ICaseTable {
public:
    struct Item {
        WString first;
        V second;
    };

    // Starts loading the slot where the search for tag begins. Once the table outgrows the
    // cache that load is the one miss of a search; issued while the rest of the line is read,
    // it has arrived when the search begins.
    void Prefetch(std::uint32_t tag) const {
        __builtin_prefetch(&m_slots[tag & (m_slots.size() - 1)]);
    }
    // The item named by the slot where the search for tag begins, if the slot's tag is tag:
    // as a rule the item a search will confirm, so a caller that prefetched the slot may start
    // loading the item, and later its texts, before searching. Null otherwise.
    Item const* Probable(std::uint32_t tag) const {
        std::uint64_t const slot = m_slots[tag & (m_slots.size() - 1)];
        return slot != 0 && (slot >> 32) == tag ? &m_items[Index(slot)] : nullptr;
    }

    // The item with key, made with V() if there was none; true when it was made. The pointer
    // holds until the next addition.
    std::pair<Item*, bool> try_emplace(WString const& key, std::uint32_t tag) {
        std::size_t pos = Search(key, tag);
        if (m_slots[pos] != 0)
            return {&m_items[Index(m_slots[pos])], false};
        if ((m_items.size() + 1) * 2 > m_slots.size()) {
            Grow();
            pos = Search(key, tag);
        }
        m_items.push_back(Item{key, V()});
        m_slots[pos] = std::uint64_t{tag} << 32 | m_items.size();
        return {&m_items.back(), true};
    }
    Item const* find(WString const& key) const { return find(key, Tag(key)); }
    Item const* find(WString const& key, std::uint32_t tag) const {
        std::uint64_t const slot = m_slots[Search(key, tag)];
        return slot ? &m_items[Index(slot)] : nullptr;
    }
    Item* find(WString const& key) { return const_cast<Item*>(std::as_const(*this).find(key)); }
    void clear() {
        m_items.clear();
        m_slots.assign(kFirstSlots, 0);
    }
    std::size_t size() const { return m_items.size(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    static constexpr std::size_t kFirstSlots = 16;

    static std::size_t Index(std::uint64_t slot) { return (slot & 0xFFFFFFFFu) - 1; }
    // The slot holding key, or the empty slot where it would go.
    std::size_t Search(WString const& key, std::uint32_t tag) const {
        std::size_t const mask = m_slots.size() - 1;
        for (std::size_t pos = tag & mask;; pos = (pos + 1) & mask) {
            std::uint64_t const slot = m_slots[pos];
            if (slot == 0 || ((slot >> 32) == tag && m_items[Index(slot)].first.ICmp(key) == 0))
                return pos;
        }
    }
    // Twice the slots; each item goes to the first free slot from its tag on.
    void Grow() {
        std::vector<std::uint64_t> slots(m_slots.size() * 2, 0);
        std::size_t const mask = slots.size() - 1;
        for (std::uint64_t slot : m_slots) {
            if (slot == 0)
                continue;
            std::size_t pos = (slot >> 32) & mask;
            while (slots[pos] != 0)
                pos = (pos + 1) & mask;
            slots[pos] = slot;
        }
        m_slots.swap(slots);
    }

    std::vector<Item> m_items;
    std::vector<std::uint64_t> m_slots = std::vector<std::uint64_t>(kFirstSlots, 0);
};

// A key without underscore: its default text goes into the index of one-word keys.
bool IsOneWordKey(WString const& key) {
    return !key.Includes(u'_');
}

// The tags of the two searches of an Add: the key's in the entries and, for a one-word key,
// its default text's in the index.
struct Tags {
    std::uint32_t key = 0;
    std::uint32_t defaultText = 0;

    std::uint32_t OfKey(WString const& k) { return key = Tag(k); }
    // True when the key is a one-word key, whose default text is then tagged.
    bool OfDefaultText(WString const& k, WString const& text) {
        if (!IsOneWordKey(k))
            return false;
        defaultText = Tag(text);
        return true;
    }
};

// Keys in ascending ICmp order, the order in which an ordered map would list them.
template <class Key>
void SortKeys(std::vector<Key>& keys) {
    auto const key = [](Key const& k) -> WString const& {
        if constexpr (std::is_pointer_v<Key>)
            return k->first;
        else
            return k;
    };
    std::sort(keys.begin(), keys.end(),
              [&](Key const& a, Key const& b) { return key(a).ICmp(key(b)) < 0; });
}

} // namespace

struct BLanguageMap::State {

    bool reportMissingTranslations = false;
    bool testMode = false;
    // Key to both its texts: one table instead of a current and a default map with the same
    // keys halves the searches of every Add and lookup.
    ICaseTable<Texts> entries;
    WString currentLanguage;
    // Default text to the keys without underscore that carry it, both case-blind. A text whose
    // keys have all gone keeps an empty list, which counts as not taken.
    ICaseTable<std::vector<WString>> oneWordKeysByDefault;
    // The merge's translation is only asked for the text of a key: it keeps neither default
    // texts nor the index, which serve Add's warnings, TranslateBack and the listings. What it
    // holds, and so every merged line, stays the same; a third fewer blocks stay in memory.
    bool textsOnly = false;

    // Add of a valid key whose tags are known.
    int Add(Tags const& tags, WString key, WString defaultText, WString text, bool replace,
            bool useDefault) {
        int result = 0;
        if (reportMissingTranslations && defaultText.IsEmpty())
            result = kIdWithoutText;
        // One search serves the lookup and the insertion; a key that stays out leaves no trace.
        auto const [place, inserted] = entries.try_emplace(key, tags.key);
        if (!inserted && !replace)
            return kIdNotUnique;
        if (text.IsEmpty() && useDefault) {
            text = defaultText;
            if (reportMissingTranslations)
                result = kIdWithoutText;
        }
        // Keys that ICmp calls equal agree on underscores, so the old entry of a one-word key
        // was one-word too, and only those are indexed.
        if (IsOneWordKey(key) && !textsOnly) {
            auto const keys = oneWordKeysByDefault.try_emplace(defaultText, tags.defaultText).first;
            // With replace the key's own old entry is still indexed here and counts, as it
            // does for a walk over the map.
            if (!keys->second.empty())
                result = kIdNotBiunique;
            if (!inserted)
                UnindexOneWordKey(place->second.key, place->second.defaultText);
            keys->second.push_back(key);
        }
        place->second =
            Texts{std::move(key), std::move(text), textsOnly ? WString() : std::move(defaultText)};
        return result;
    }

    void UnindexOneWordKey(WString const& key, WString const& defaultText) {
        auto* const entry = oneWordKeysByDefault.find(defaultText);
        if (entry == nullptr)
            return;
        std::vector<WString>& keys = entry->second;
        auto const found =
            std::find_if(keys.begin(), keys.end(), [&](WString const& k) { return k.IEqual(key); });
        if (found != keys.end())
            keys.erase(found);
    }

    // The entries in ascending key order.
    std::vector<ICaseTable<Texts>::Item const*> Ordered() const {
        std::vector<ICaseTable<Texts>::Item const*> ordered;
        ordered.reserve(entries.size());
        for (auto const& entry : entries)
            ordered.push_back(&entry);
        SortKeys(ordered);
        return ordered;
    }
};

BLanguageMap::BLanguageMap() : m_state(std::make_unique<State>()) {}

BLanguageMap::~BLanguageMap() = default;

// ---- the map --------------------------------------------------------------------------------

int BLanguageMap::Add(WString key, WString defaultText, WString text, bool replace,
                      bool useDefault) {
    if (!IsIdValid(key))
        return kInvalidId;
    Tags tags;
    tags.OfKey(key);
    tags.OfDefaultText(key, defaultText);
    return m_state->Add(tags, std::move(key), std::move(defaultText), std::move(text), replace,
                        useDefault);
}

void BLanguageMap::Clear() {
    m_state->entries.clear();
    m_state->oneWordKeysByDefault.clear();
}

bool BLanguageMap::Includes(WString key) const {
    return m_state->entries.find(key) != nullptr;
}

bool BLanguageMap::Find(WString const& key, WString& text, bool current) const {
    auto const* found = m_state->entries.find(key);
    if (found == nullptr)
        return false;
    text = current ? found->second.text : found->second.defaultText;
    return true;
}

WString BLanguageMap::Translate(WString text) const {
    if (text.IsEmpty() || text[0] != u'$')
        return text;
    WString found;
    if (!Find(text, found, true))
        return text;
    if (m_state->testMode)
        return u"*" + found + u"*";
    return found;
}

WString BLanguageMap::TranslateExt(WString text) const {
    auto pos = text.Search(u'$');
    while (pos != WString::Traits::kNotFound) {
        auto const length = text.Length();
        auto end = pos + 1;
        while (end < length && IsAlNumUnderscore(text[end]))
            ++end;
        WString const translated = Translate(text.Sub(pos, end - pos));
        text.ReplaceAt(translated.CStr(), pos, end - pos);
        pos = text.Search(u'$', pos + translated.Length());
    }
    return text;
}

int BLanguageMap::TranslateBack(WString text, WString& keys, WString prefix,
                                ELanguage language) const {
    int count = 0;
    auto const note = [&](WString const& key) {
        if (count++ == 0)
            keys = key;
        else
            keys.Append(u',').Append(key);
    };
    std::vector<WString> matches;
    if (language == DEFAULT && prefix.Equal(u"$")) {
        auto const* entry = m_state->oneWordKeysByDefault.find(text);
        if (entry != nullptr)
            matches = entry->second;
    } else {
        for (auto const& [_, texts] : m_state->entries)
            if ((language == DEFAULT ? texts.defaultText : texts.text).IEqual(text) &&
                HasPrefix(texts.key, prefix))
                matches.push_back(texts.key);
    }
    // Listed in ascending key order, as a walk over an ordered map meets them.
    SortKeys(matches);
    for (WString const& key : matches)
        note(key);
    return count;
}

WString BLanguageMap::CurrentLanguage() {
    return m_state->currentLanguage;
}

void BLanguageMap::ActivateTestMode(bool on) {
    m_state->testMode = on;
}

void BLanguageMap::SetReportMissingTranslations(bool on) {
    m_state->reportMissingTranslations = on;
}

bool BLanguageMap::GetReportMissingTranslations() const {
    return m_state->reportMissingTranslations;
}

std::vector<BLanguageMap::Entry> BLanguageMap::Entries() const {
    std::vector<Entry> entries;
    entries.reserve(m_state->entries.size());
    for (auto const* entry : m_state->Ordered())
        entries.push_back({entry->second.key, entry->second.defaultText, entry->second.text});
    return entries;
}

bool BLanguageMap::IsIdValid(WString key) {
    if (key.IsEmpty() || key[0] != u'$')
        return false;
    for (char16_t const* p = key.CStr() + 1; *p; ++p)
        if (!IsAlNumUnderscore(*p))
            return false;
    return true;
}

bool BLanguageMap::IsAlNumUnderscore(char16_t c) {
    return c == u'_' || qv::platform::IsAlnumW(c);
}

bool BLanguageMap::HasPrefix(WString key, WString prefix) {
    if (prefix.IsEmpty())
        return true;
    if (prefix.Equal(u"$"))
        return IsOneWordKey(key);
    return key.IStartsWith(prefix + u"_");
}

SP<BLanguageMap> BLanguageMap::Instance() {
    return registered;
}

void BLanguageMap::RegisterInstance(SP<BLanguageMap> map) {
    registered = std::move(map);
}

// ---- language files -------------------------------------------------------------------------

unsigned short BLanguageMap::ReadCell(BFile& file, WString& cell) {
    std::FILE* const stream = file;
    if (!stream)
        return kEndOfFile;
    using qv::platform::fgetwc16;
    CellUnits chars;
    int c = fgetwc16(stream);
    auto const ends = [](int unit) { return unit == kTab || unit == kLineFeed || unit == kWEOF; };
    if (c == kQuote) {
        // Up to the closing quote; a doubled quote is one quote. The unit behind the closing
        // quote ends the cell whatever it is.
        for (c = fgetwc16(stream); c != kWEOF; c = fgetwc16(stream)) {
            if (c == kQuote && (c = fgetwc16(stream)) != kQuote)
                break;
            chars.Add(static_cast<char16_t>(c));
        }
    } else {
        for (; !ends(c); c = fgetwc16(stream))
            chars.Add(static_cast<char16_t>(c));
    }
    // CopyN stops at a zero unit, which ends the cell's text.
    chars.CopyTo(cell);
    cell.ResolveEsc();
    return static_cast<unsigned short>(c);
}

template <class OnCell>
bool BLanguageMap::ReadLn(BFile& file, BArray<WString>& cells, unsigned long long count,
                          OnCell const& onCell) {
    std::FILE* const stream = file;
    if (!stream || AtEnd(stream))
        return false;
    if (cells.Count() != count)
        cells.Resize(count);
    unsigned short end = 0;
    for (unsigned long long i = 0; i < count; ++i) {
        end = ReadCell(file, cells[i]);
        onCell(i, cells[i]);
        if (end == kLineFeed || end == kEndOfFile) {
            for (++i; i < count; ++i) {
                cells[i].Clear();
                onCell(i, cells[i]);
            }
            break;
        }
    }
    if (count > 0 && end == kTab)
        SkipLn(file);
    return true;
}

unsigned short BLanguageMap::SkipLn(BFile& file) {
    std::FILE* const stream = file;
    if (!stream)
        return kEndOfFile;
    enum { CellStart, Plain, Quoted } state = CellStart;
    for (;;) {
        int const c = qv::platform::fgetwc16(stream);
        if (c == kWEOF || (c == kLineFeed && state != Quoted))
            return static_cast<unsigned short>(c);
        if (state == CellStart)
            state = c == kQuote ? Quoted : c == kTab ? CellStart : Plain;
        else if (state == Plain && c == kTab)
            state = CellStart;
        else if (state == Quoted && c == kQuote)
            state = Plain;
    }
}

int BLanguageMap::ImportMapFile(WString path, WString* report, bool replace, bool useDefault) {
    if (report)
        report->Append(u"Import Language File ").Append(path).Append(kLineFeed);
    BFile file;
    if (!file.OpenShared(path, u"r,ccs=UTF-16LE"))
        return 1;
    HeldStream const held(file);
    int result = 0;
    long long lines = 0, entries = 0;
    BArray<WString> cells;
    // The searches of Add start while the line is read: the key's once it is read, and a
    // one-word key's default text in the index once that is read.
    Tags tags;
    auto const prefetch = [&](unsigned long long i, WString const& cell) {
        if (i == 0 && IsKeyCell(cell))
            m_state->entries.Prefetch(tags.OfKey(cell));
        else if (i == 1 && !m_state->textsOnly && IsKeyCell(cells[0]) &&
                 tags.OfDefaultText(cells[0], cell))
            m_state->oneWordKeysByDefault.Prefetch(tags.defaultText);
    };
    while (ReadLn(file, cells, kCellsPerRecord, prefetch)) {
        ++lines;
        if (!IsKeyCell(cells[0]))
            continue;
        int const answer = IsIdValid(cells[0]) ? m_state->Add(tags, cells[0], cells[1], cells[2],
                                                              replace, useDefault)
                                               : kInvalidId;
        ++entries;
        if (answer == 0)
            continue;
        result = kImportError;
        if (report)
            report->Append(u"Line ")
                .Append(WString::FromInt(lines))
                .Append(u" : Error ")
                .Append(WString::FromInt(answer))
                .Append(u" [")
                .Append(cells[0])
                .Append(u"] [")
                .Append(cells[1])
                .Append(u"] [")
                .Append(cells[2])
                .Append(u"]\n");
    }
    if (report)
        report->Append(WString::FromInt(entries)).Append(u" entries loaded\n\n");
    return result;
}

int BLanguageMap::ImportMapFiles(WString directory, WString pattern, WString* report,
                                 bool replace) {
    int result = 0;
    bool const found = ForEachMatchingFile(directory, pattern, [&](char16_t const* name) {
        if (int const r = ImportMapFile(PathIn(directory, name), report, replace, true))
            result = r;
    });
    if (!found)
        return kNoFileMatches;
    // The language is the directory's last component; both separators count, so a path
    // written on either system names the same language, and a trailing one gives none.
    auto const length = directory.Length();
    auto start = length;
    while (start > 0 && directory[start - 1] != u'\\' && directory[start - 1] != u'/')
        --start;
    m_state->currentLanguage = directory.Sub(start);
    return result;
}

int BLanguageMap::ExportMapFile(WString path) const {
    BFile file;
    if (!file.Open(path, u"wt,ccs=UTF-16LE"))
        return kCannotCreateFile;
    LineWriter out(file);
    // The second cell stays empty: the file carries the key and the current language's text.
    for (auto const* entry : m_state->Ordered())
        out << entry->second.key << u"\t\t" << entry->second.text << u"\n";
    return 0;
}

void BLanguageMap::ReplaceControlChars(WString& text) {
    text.Replace(u"\n", u"\\n");
    text.Replace(u"\r", u"\\r");
    text.Replace(u"\t", u"\\t");
}

// ---- merge ----------------------------------------------------------------------------------

int BLanguageMap::MergeMapFile(WString const& referenceDirectory,
                               WString const& translationDirectory, WString const& targetDirectory,
                               WString const& fileName, int& newEntries) {
    BFile reference;
    if (!reference.Open(PathIn(referenceDirectory, fileName), u"r,ccs=UTF-16LE"))
        return kMergeCannotOpenReference;
    BFile target;
    if (!target.Open(PathIn(targetDirectory, fileName), u"wt,ccs=UTF-16LE"))
        return kMergeCannotCreateTarget;
    // A translation that can't be read is an empty one: every key is new.
    BLanguageMap translation;
    translation.m_state->textsOnly = true;
    translation.ImportMapFile(PathIn(translationDirectory, fileName), nullptr, false, true);

    HeldStream const held(reference);
    LineWriter out(target);
    BArray<WString> cells;
    auto const& known = translation.m_state->entries;
    std::uint32_t tag = 0;
    // A search for a key that the translation holds touches its slot, its item and the key's
    // and the text's blocks, each found through the one before. The line's cells give time to
    // load them in turn before the search: the slot behind the key, the item behind the
    // default text, the blocks behind the text.
    bool keyLine = false;
    auto const prefetch = [&](unsigned long long i, WString const& cell) {
        if (i == 0) {
            keyLine = IsKeyCell(cell);
            if (keyLine)
                known.Prefetch(tag = Tag(cell));
        } else if (auto const* item = keyLine ? known.Probable(tag) : nullptr) {
            if (i == 1) {
                __builtin_prefetch(item);
            } else {
                __builtin_prefetch(item->first.CStr());
                __builtin_prefetch(item->second.text.CStr());
            }
        }
    };
    auto const escaped = [](WString cell) {
        ReplaceControlChars(cell);
        return cell;
    };
    while (ReadLn(reference, cells, kCellsPerRecord, prefetch)) {
        WString const& first = cells[0];
        if (first.IsEmpty()) {
            out << u"\t\t";
        } else if (first[0] != u'$') {
            // A comment line keeps its non-empty cells, so an empty second cell moves the third
            // forward.
            out << escaped(first);
            for (unsigned long long i = 1; i < kCellsPerRecord; ++i)
                if (!cells[i].IsEmpty())
                    out << u"\t" << escaped(cells[i]);
        } else if (auto const* found = known.find(first, tag)) {
            out << first << u"\t" << escaped(cells[1]) << u"\t" << escaped(found->second.text);
        } else {
            out << first << u"\t" << escaped(cells[1]) << u"\t\t" << kNewEntry;
            ++newEntries;
        }
        out << u"\n";
    }
    return 0;
}

int BLanguageMap::MergeMapFiles(WString const& referenceDirectory,
                                WString const& translationDirectory, WString const& targetDirectory,
                                WString const& fileName, int& newEntries) {
    newEntries = 0;
    if (!BFile::Exist(referenceDirectory))
        return kMergeNoReferenceDirectory;
    if (!BFile::Exist(translationDirectory))
        return kMergeNoTranslationDirectory;
    int result = 0;
    bool const found = ForEachMatchingFile(referenceDirectory, fileName, [&](char16_t const* name) {
        if (int const r = MergeMapFile(referenceDirectory, translationDirectory, targetDirectory,
                                       name, newEntries))
            result = r;
    });
    return found ? result : kMergeNoFileMatches;
}
