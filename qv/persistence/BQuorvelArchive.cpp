#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <qv/core/BError.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/Tupel.h>
#include <qv/platform/FileSeek.h>
#include <qv/platform/FileStream.h>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

QV_REGISTER_CLASSNAME(BQuorvelArchive);

namespace {

constexpr char kClassPrefix[] = "class ";
constexpr char kArchiveClass[] = "class BArchive";
constexpr int kWrittenFormat = 8;
constexpr int kOldestFormat = 2;
// Bytes gathered before they go to the stream. A record is patched here while it is still in
// memory, so that writing does not seek (and so flush the stream) once per object.
constexpr std::size_t kOutputChunk = 1 << 20;
constexpr std::size_t kInputChunk = 1 << 16;
// How many loaded objects ahead a walk over them asks for their memory.
constexpr std::size_t kAhead = 8;

// The key of a reference number: the same text as BSmartObj::Id gives, made without a
// string of our own on the heap, since loading does this once per reference.
std::string NumberKey(unsigned long long number) {
    char text[16];
    return std::string(text, std::to_chars(text, text + 16, number, 16).ptr);
}

void AddClassPrefix(BString& text) {
    if (!text.StartsWith(kClassPrefix))
        text.Prepend(kClassPrefix);
}

// The file is reached through the C runtime, in binary mode, with 64-bit positions.
std::FILE* OpenFile(WString const& path, bool write) {
    std::FILE* file = nullptr;
    if (path.IsEmpty() || qv::platform::_wfopen_s(&file, path.CStr(), write ? u"wb" : u"rb") != 0)
        return nullptr;
    return file;
}

bool Seek(std::FILE* file, long long position, int origin = SEEK_SET) {
    return qv::platform::_fseeki64(file, position, origin) == 0;
}

long long Tell(std::FILE* file) {
    return qv::platform::_ftelli64(file);
}

constexpr std::size_t kNoRecord = static_cast<std::size_t>(-1);

// A growing array kept in chunks of fixed size. Appending never moves what is there: the
// tables of a large load (a record and a few notes per object) grow without copying
// themselves over and over, and without touching twice the memory they end up needing.
template <class T>
class ChunkedArray {
public:
    T& operator[](std::size_t at) { return m_chunks[at >> kShift][at & kMask]; }
    T const& operator[](std::size_t at) const { return m_chunks[at >> kShift][at & kMask]; }
    std::size_t size() const { return m_size; }
    T& emplace_back() {
        if ((m_size >> kShift) == m_chunks.size())
            m_chunks.push_back(std::make_unique_for_overwrite<T[]>(kChunk));
        T& added = (*this)[m_size++];
        added = T{};
        return added;
    }
    void push_back(T const& value) { emplace_back() = value; }
    // Keeps the chunks for what comes next.
    void clear() { m_size = 0; }

private:
    static constexpr std::size_t kShift = 12;
    static constexpr std::size_t kChunk = std::size_t{1} << kShift;
    static constexpr std::size_t kMask = kChunk - 1;
    std::vector<std::unique_ptr<T[]>> m_chunks;
    std::size_t m_size = 0;
};

struct KeyEntry {
    std::size_t record = kNoRecord; // the last record of the file under this key
    BSmartObj* object = nullptr;    // loaded; the list of loaded objects owns it
    bool queued = false;
    bool failed = false;
};

// What the opening scan learned of a record, so that loading it goes straight to its data.
// The scan refuses a file with any prefix that does not read, so every record here has one
// that reads as noted.
struct Record {
    // The entry of a key, null if the key is empty. During the scan a key in the form of a
    // number holds that number instead: its entry exists once the array of numbers is sized.
    union Key {
        KeyEntry* entry;
        unsigned long long number;
    };
    long long data = 0;            // where the data begins, behind the prefix
    Key keys[2] = {{}, {}};        // of its id and of its name
    std::int32_t version = 0;      // the object's version from the prefix
    std::uint32_t className = 0;   // index into the class names the scan met
    std::uint8_t numberedKeys = 0; // during the scan, bit which set while keys[which] is a number
};

// The keys of a file. Ids in their own form (lower-case hexadecimal without leading zeros)
// up to the number of records are kept in an array indexed by their number, which is what a
// reference number finds its object by; every other key, names and foreign ids alike, is
// kept by its text. Which table a text belongs to depends only on the text, so both serve as
// the one dictionary of keys.
class KeyTable {
public:
    // Sizes the array once the number of records is known; the keys of records in the form
    // of numbers are entered then, in file order, so that later records win. Entries keep
    // their addresses from here on: the array is not resized again, and the other keys live
    // in nodes of a hash map.
    void Build(ChunkedArray<Record>& records) {
        m_slots.resize(records.size() + 1);
        for (std::size_t at = 0; at < records.size(); ++at) {
            Record& record = records[at];
            for (int which = 0; which < 2; ++which) {
                if (!(record.numberedKeys & (1 << which)))
                    continue;
                KeyEntry& entry = Get(record.keys[which].number);
                entry.record = at;
                record.keys[which].entry = &entry;
            }
            record.numberedKeys = 0;
        }
    }
    // The entry of a key that is not in the form of a number.
    KeyEntry& Named(std::string_view key) { return m_named[std::string(key)]; }
    KeyEntry* Find(std::string_view key) {
        unsigned long long number = 0;
        if (IsNumber(key, number))
            return Find(number);
        auto found = m_named.find(std::string(key));
        return found == m_named.end() ? nullptr : &found->second;
    }
    KeyEntry* Find(unsigned long long number) {
        if (number < m_slots.size())
            return &m_slots[number];
        auto found = m_named.find(NumberKey(number));
        return found == m_named.end() ? nullptr : &found->second;
    }
    KeyEntry& Get(std::string_view key) {
        unsigned long long number = 0;
        return IsNumber(key, number) ? Get(number) : m_named[std::string(key)];
    }
    KeyEntry& Get(unsigned long long number) {
        return number < m_slots.size() ? m_slots[number] : m_named[NumberKey(number)];
    }
    template <class F>
    void ForEach(F f) {
        for (KeyEntry& entry : m_slots)
            f(entry);
        for (auto& [key, entry] : m_named)
            f(entry);
    }

    // True for the text that BSmartObj::Id gives for some number.
    static bool IsNumber(std::string_view key, unsigned long long& number) {
        if (key.empty() || key.size() > 16 || (key[0] == '0' && key.size() > 1))
            return false;
        for (char c : key)
            if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')))
                return false;
        std::from_chars(key.data(), key.data() + key.size(), number, 16);
        return true;
    }

private:
    std::vector<KeyEntry> m_slots;
    std::unordered_map<std::string, KeyEntry> m_named;
};

// What writing knows of each object met: its number, and whether it is pending.
struct Met {
    unsigned int index = 0;
    bool indexed = false;
    bool pending = false;
};

// The objects met on writing, by address. Each object is looked up several times while a
// graph is written, so the table is open-addressed in one array: a lookup touches one or two
// neighbouring slots instead of chasing a node per object. Nothing is ever removed. Null
// holds 0 from the start.
class MetTable {
public:
    // The entry of an object, added if new. It stays valid until the next object is added.
    Met& operator[](void const* object) {
        if (!object)
            return m_null;
        if ((m_count + 1) * 2 > m_slots.size())
            Grow();
        Slot& slot = Place(m_slots, m_shift, object);
        if (!slot.object) {
            slot.object = object;
            ++m_count;
        }
        return slot.met;
    }

private:
    struct Slot {
        void const* object = nullptr;
        Met met;
    };

    // The slot that holds the object, or the free one where it belongs. The memory page of
    // the address is spread by a multiplicative hash, its place in the page is kept: objects
    // allocated together are mostly met together, and then share a stretch of the table
    // instead of costing a cache miss each. Two objects of one page never collide.
    static Slot& Place(std::vector<Slot>& slots, int shift, void const* object) {
        std::size_t mask = slots.size() - 1;
        std::uintptr_t address = reinterpret_cast<std::uintptr_t>(object);
        std::size_t at =
            (static_cast<std::size_t>((address >> 12) * 0x9E3779B97F4A7C15ull >> shift) ^
             (address >> 4 & 0xFF)) &
            mask;
        while (slots[at].object && slots[at].object != object)
            at = (at + 1) & mask;
        return slots[at];
    }

    void Grow() {
        std::vector<Slot> larger(m_slots.empty() ? 64 : m_slots.size() * 2);
        int shift = 64 - std::countr_zero(larger.size());
        for (Slot const& slot : m_slots)
            if (slot.object)
                Place(larger, shift, slot.object) = slot;
        m_slots = std::move(larger);
        m_shift = shift;
    }

    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
    int m_shift = 64;
    Met m_null{0, true, false};
};

// Reference numbers of fields under load, null references included. Each read function that
// runs gets a reader number; its notes are kept in order, and the loaded object remembers the
// stretch of notes that its read function made. Its UpdateAssociations then finds each field
// there: mostly at the next note, since classes resolve in the order they read, and otherwise
// through an index of the stretch made once per object, so that any order stays linear.
class NoteBook {
public:
    struct Note {
        void* field;
        unsigned long long number;
        std::uint32_t reader;
    };
    struct Stretch {
        std::size_t begin = 0, end = 0, next = 0;
        std::uint32_t reader = 0;
    };

    // A read function starts: where its notes begin, and the reader it interrupts (a read
    // function may itself call TakeOut).
    struct Mark {
        std::size_t begin;
        std::uint32_t outer;
    };
    Mark Begin() {
        Mark mark{m_notes.size(), m_reader};
        m_reader = ++m_readers;
        return mark;
    }
    // Ends the read function that Begin started; its notes form the stretch returned.
    Stretch End(Mark const& mark) {
        Stretch done{mark.begin, m_notes.size(), mark.begin, m_reader};
        m_reader = mark.outer;
        return done;
    }
    // The read function gave up: its object is gone, and its fields' addresses may soon
    // belong to someone else.
    void Drop(Stretch const& stretch) {
        for (std::size_t i = stretch.begin; i < stretch.end; ++i)
            if (m_notes[i].reader == stretch.reader)
                m_notes[i].field = nullptr;
    }
    void Add(void* field, unsigned long long number) {
        m_notes.push_back({field, number, m_reader});
    }
    // The number noted for a field of the object whose stretch is current, or, outside
    // UpdateAssociations, of any object (a walk of all notes); the note is used up.
    bool Take(void* field, unsigned long long& number) {
        std::size_t at = m_current ? Locate(*m_current, field) : LocateAnywhere(field);
        if (at == kNone)
            return false;
        number = m_notes[at].number;
        m_notes[at].field = nullptr;
        if (m_current)
            m_current->next = at + 1;
        return true;
    }
    // Makes a stretch current and returns the one before (UpdateAssociations may call
    // TakeOut).
    Stretch* SetCurrent(Stretch* stretch) { return std::exchange(m_current, stretch); }
    // Drops all notes, unless a read function is running or an object is being updated:
    // their notes are still to come or to be used.
    void ClearIfIdle() {
        if (m_reader == 0 && m_current == nullptr)
            m_notes.clear();
    }

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t Locate(Stretch const& stretch, void* field) {
        if (stretch.next < stretch.end && m_notes[stretch.next].field == field &&
            m_notes[stretch.next].reader == stretch.reader)
            return stretch.next;
        if (m_indexed != stretch.reader) {
            m_index.clear();
            for (std::size_t i = stretch.begin; i < stretch.end; ++i)
                if (m_notes[i].field && m_notes[i].reader == stretch.reader)
                    m_index.emplace(m_notes[i].field, i);
            m_indexed = stretch.reader;
        }
        auto found = m_index.find(field);
        return found != m_index.end() && m_notes[found->second].field == field ? found->second
                                                                               : kNone;
    }

    std::size_t LocateAnywhere(void* field) const {
        for (std::size_t i = 0; i < m_notes.size(); ++i)
            if (m_notes[i].field == field)
                return i;
        return kNone;
    }

    ChunkedArray<Note> m_notes;
    std::uint32_t m_reader = 0;
    std::uint32_t m_readers = 0;
    Stretch* m_current = nullptr;
    // The index of the stretch of one reader, made when its object resolves out of order.
    std::unordered_map<void*, std::size_t> m_index;
    std::uint32_t m_indexed = 0;
};

} // namespace

struct BQuorvelArchive::State {
    State(BQuorvelArchive& archive, WString name, MODE openMode)
        : path(std::move(name)), mode(openMode), owner(archive) {}

    WString path;
    MODE mode;
    std::FILE* file = nullptr;
    long long dataStart = -1;   // behind the prefix of the record being written
    long long firstRecord = -1; // behind the header, once it was read
    int formatVersion = kWrittenFormat;
    BQuorvelArchive& owner;

    // Writing. Objects to write in file order; beside the list, what is known of each object
    // met: its number, and whether it is pending. The names in use are in a set, so Insert's
    // "already there?" costs constant time and the walk of the list stays the order of the
    // file.
    std::vector<NArchive::Tupel> pending;
    // Beside each pending object its number if it had one when inserted, else 0: an object
    // reached by reference is numbered just before, and its prefix then needs no second
    // lookup in the table, which for a large graph is a cache miss per record.
    std::vector<unsigned int> pendingNumbers;
    // The object whose record is written (or was, last) with that number; the pending list
    // keeps it alive, so its address names no other object.
    BSmartObj const* writing = nullptr;
    unsigned int writingNumber = 0;
    std::size_t firstUnwritten = 0;
    MetTable met;
    std::size_t indexed = 1; // null holds 0
    std::unordered_set<std::string> pendingNames;

    // Reading. The keys of the file; the loaded objects in order of loading with the notes of
    // their read functions, of which those before firstUnresolved have had
    // UpdateAssociations; the keys to load at the end of the running TakeOut.
    struct Loaded {
        SP<BSmartObj> object;
        NoteBook::Stretch notes;
    };
    KeyTable keys;
    ChunkedArray<Record> records;
    // The class names of the records, with "class " in front, each once, and the read
    // function found for each so far. A found function stays: the table of read functions
    // only grows, and its older rows win.
    std::vector<BString> classNames;
    std::vector<NArchive::ReadFunction> readFunctions;
    std::unordered_map<std::string, std::uint32_t> classIndex;
    std::vector<Loaded> loaded;
    std::size_t firstUnresolved = 0;
    std::deque<KeyEntry*> later;
    std::vector<KeyEntry*> failed;
    NoteBook notes;

    // Written bytes not yet handed to the stream (the first outputUsed of the buffer), and the
    // file position of the first. The buffer is sized once, when writing begins.
    std::vector<unsigned char> output;
    std::size_t outputUsed = 0;
    long long outputStart = 0;

    // Bytes read ahead: the stream's position is always inputStart + inputEnd. Loading seeks
    // once per object, mostly to where the previous one ended or a little further, which is
    // served here without a call to the stream.
    std::vector<unsigned char> input;
    std::size_t inputPosition = 0;
    std::size_t inputEnd = 0;
    long long inputStart = 0;

    // The stream's error flag, as of the last call that can set it. It is asked for on every
    // read of a value, and asking the stream takes its lock.
    bool streamError = false;

    bool Good() const { return file && !streamError; }
    void NoteStreamState() {
        streamError = file && std::ferror(file);
        if (streamError)
            TakeBack();
    }

    // The buffers are lent to the archive's windows, through which plain values pass without
    // a virtual call, while the stream is good and only by an archive of this very class: a
    // derived class may override how bytes are read or written, so its bytes always take the
    // virtual path. While lent, the window holds the cursor. Whatever moves the cursor or
    // touches the stream takes it back first and lends it again when done.
    void TakeBack() {
        if (owner.m_readNext) {
            inputPosition = static_cast<std::size_t>(owner.m_readNext - input.data());
            owner.m_readNext = owner.m_readEnd = nullptr;
        }
        if (owner.m_writeNext) {
            outputUsed = static_cast<std::size_t>(owner.m_writeNext - output.data());
            owner.m_writeNext = owner.m_writeEnd = nullptr;
        }
    }
    void Lend() {
        if (!Good() || typeid(owner) != typeid(BQuorvelArchive))
            return;
        if (mode == WRITE) {
            owner.m_writeNext = output.data() + outputUsed;
            owner.m_writeEnd = output.data() + output.size();
        } else {
            owner.m_readNext = input.data() + inputPosition;
            owner.m_readEnd = input.data() + inputEnd;
        }
    }

    void OpenForWriting(BString const& name, int version) {
        file = OpenFile(path, true);
        if (file)
            owner << name << static_cast<std::int32_t>(version) << BString(kArchiveClass)
                  << static_cast<std::int32_t>(kWrittenFormat);
    }

    void OpenForReading(BString const& name, int version) {
        file = OpenFile(path, false);
        if (file && !(ReadHeader(name, version) && ScanRecords()))
            Close();
    }

    bool ReadHeader(BString const& name, int version) {
        BString first, second;
        std::int32_t application = 0, format = 0;
        try {
            owner >> first >> application >> second >> format;
        } catch (ARCHIVE_EXCEPTION) {
            return false;
        }
        // Files of early writers have names without "class " in front; they compare equal to
        // names that have it.
        if (!first.StartsWith(kClassPrefix)) {
            first.Prepend(kClassPrefix);
            second.Prepend(kClassPrefix);
        }
        if (!(first.Equal(name) && second == kArchiveClass && application >= version &&
              format >= kOldestFormat && format <= kWrittenFormat))
            return false;
        formatVersion = format;
        firstRecord = ReadPosition();
        return true;
    }

    // One pass over the prefixes, seeking over the data, to learn where each key lies.
    bool ScanRecords() {
        TakeBack();
        if (!Seek(file, 0, SEEK_END))
            return false;
        long long end = Tell(file);
        inputStart = end;
        inputPosition = inputEnd = 0;
        long long position = firstRecord;
        if (end < 0 || !SeekRead(position))
            return false;
        BString id, name, className; // reused: their blocks are filled in place
        while (position < end) {
            int version = 0;
            unsigned long long size = 0;
            std::string_view texts[3];
            if (!PrefixInBuffer(texts, version, size)) {
                if (!BSmartObj::ReadPrefix(owner, id, name, className, version, size))
                    return false;
                texts[0] = id.View();
                texts[1] = name.View();
                texts[2] = className.View();
            }
            long long data = ReadPosition();
            // A negative size is the placeholder of a record that never got finished. It is
            // refused as such, also where seeking back by it would succeed: that could walk
            // the scan in circles. A size beyond the end would fail at the next prefix.
            if (static_cast<long long>(size) < 0 ||
                size > static_cast<unsigned long long>(end - data))
                return false;
            Record& record = records.emplace_back();
            record.data = data;
            record.version = version;
            record.className = InternClassName(texts[2]);
            for (int which = 0; which < 2; ++which) {
                std::string_view key = texts[which];
                unsigned long long number = 0;
                if (KeyTable::IsNumber(key, number)) {
                    record.keys[which].number = number;
                    record.numberedKeys |= static_cast<std::uint8_t>(1 << which);
                } else if (!key.empty()) {
                    KeyEntry& entry = keys.Named(key);
                    entry.record = records.size() - 1;
                    record.keys[which].entry = &entry;
                }
            }
            position = data + static_cast<long long>(size);
            if (!SeekRead(position))
                return false;
        }
        keys.Build(records);
        loaded.reserve(records.size());
        return true;
    }

    // Few classes make up a file, and records of one class mostly follow each other.
    // The prefix of the record at the read position, taken straight from the read-ahead
    // buffer when all of it is there: id, name and class name as they would read (up to a
    // zero byte, as a string's text ends there), the version and the size. False, with
    // nothing read, when the buffer ends inside the prefix or a tag is wrong; the general path
    // then reads the prefix and decides. Opening reads a prefix per record, and making three
    // strings of each was a good part of the scan.
    bool PrefixInBuffer(std::string_view (&texts)[3], int& version, unsigned long long& size) {
        // A derived class may read its bytes otherwise: it always takes the general path.
        if (!Good() || typeid(owner) != typeid(BQuorvelArchive))
            return false;
        TakeBack();
        unsigned char const* p = input.data() + inputPosition;
        unsigned char const* const end = input.data() + inputEnd;
        for (std::string_view& text : texts) {
            std::uint32_t length = 0;
            if (end - p < 5 || p[0] != 'S')
                return Lent(false);
            std::memcpy(&length, p + 1, 4);
            p += 5;
            if (static_cast<std::size_t>(end - p) < length)
                return Lent(false);
            auto const* chars = reinterpret_cast<char const*>(p);
            auto const* zero = static_cast<char const*>(std::memchr(chars, 0, length));
            text = std::string_view(chars, zero ? static_cast<std::size_t>(zero - chars) : length);
            p += length;
        }
        std::size_t const sizeWidth = formatVersion >= 8 ? 8 : 4;
        if (static_cast<std::size_t>(end - p) < 4 + sizeWidth)
            return Lent(false);
        std::int32_t stored = 0;
        std::memcpy(&stored, p, 4);
        version = stored;
        if (sizeWidth == 8) {
            std::memcpy(&size, p + 4, 8);
        } else {
            std::int32_t narrow = 0;
            std::memcpy(&narrow, p + 4, 4);
            size = static_cast<unsigned long long>(static_cast<long long>(narrow));
        }
        inputPosition = static_cast<std::size_t>(p + 4 + sizeWidth - input.data());
        return Lent(true);
    }
    bool Lent(bool result) {
        Lend();
        return result;
    }

    std::uint32_t InternClassName(std::string_view raw) {
        if (!classNames.empty() && lastClassRaw == raw)
            return lastClass;
        auto [found, added] =
            classIndex.try_emplace(std::string(raw), static_cast<std::uint32_t>(classNames.size()));
        if (added) {
            BString full{raw};
            AddClassPrefix(full);
            classNames.push_back(full);
            readFunctions.push_back(nullptr);
        }
        lastClassRaw = found->first;
        lastClass = found->second;
        return lastClass;
    }
    std::string lastClassRaw;
    std::uint32_t lastClass = 0;

    NArchive::ReadFunction ReadFunctionOf(std::uint32_t className) {
        NArchive::ReadFunction& read = readFunctions[className];
        if (!read)
            read = NArchive::BReadObjCallbackMap::Instance().Find(classNames[className].CStr());
        return read;
    }

    void Close() {
        DrainOutput();
        TakeBack();
        std::fclose(file);
        file = nullptr;
    }

    long long ReadPosition() const {
        std::size_t at = owner.m_readNext
                             ? static_cast<std::size_t>(owner.m_readNext - input.data())
                             : inputPosition;
        return inputStart + static_cast<long long>(at);
    }

    bool SeekRead(long long position) {
        TakeBack();
        if (position >= inputStart && position <= inputStart + static_cast<long long>(inputEnd)) {
            inputPosition = static_cast<std::size_t>(position - inputStart);
        } else {
            if (!Seek(file, position))
                return false;
            inputStart = position;
            inputPosition = inputEnd = 0;
        }
        Lend();
        return true;
    }

    // As fread would: the bytes that came, fewer at the end of the file or on an error.
    unsigned long long Read(void* buffer, unsigned long long size) {
        TakeBack();
        auto* out = static_cast<unsigned char*>(buffer);
        unsigned long long done = 0;
        while (done < size) {
            if (inputPosition == inputEnd && !Refill())
                break;
            std::size_t take = static_cast<std::size_t>(
                std::min<unsigned long long>(size - done, inputEnd - inputPosition));
            std::memcpy(out + done, input.data() + inputPosition, take);
            inputPosition += take;
            done += take;
        }
        Lend();
        return done;
    }

    bool Refill() {
        input.resize(kInputChunk);
        inputStart += static_cast<long long>(inputEnd);
        inputPosition = 0;
        inputEnd = std::fread(input.data(), 1, kInputChunk, file);
        NoteStreamState();
        return inputEnd > 0;
    }

    long long OutputPosition() const {
        std::size_t used = owner.m_writeNext
                               ? static_cast<std::size_t>(owner.m_writeNext - output.data())
                               : outputUsed;
        return outputStart + static_cast<long long>(used);
    }

    // Leaves the window closed: the caller lends it again if it goes on writing.
    void DrainOutput() {
        TakeBack();
        if (outputUsed == 0 || !file)
            return;
        outputStart += static_cast<long long>(std::fwrite(output.data(), 1, outputUsed, file));
        outputUsed = 0;
        NoteStreamState();
    }

    unsigned long long Write(void const* buffer, unsigned long long size) {
        TakeBack();
        unsigned long long written = size;
        if (size > output.size() - outputUsed) {
            DrainOutput();
            output.resize(kOutputChunk);
        }
        if (size >= kOutputChunk) {
            written = std::fwrite(buffer, 1, size, file);
            NoteStreamState();
            outputStart += static_cast<long long>(written);
        } else {
            std::memcpy(output.data() + outputUsed, buffer, size);
            outputUsed += size;
        }
        Lend();
        return written;
    }

    // Puts the length of the record's data into its size field, in memory where the field
    // still is, else on the file.
    void PatchSize() {
        TakeBack();
        long long end = OutputPosition();
        std::uint64_t length = static_cast<std::uint64_t>(end - dataStart);
        long long field = dataStart - 8;
        dataStart = -1;
        if (field >= outputStart) {
            std::memcpy(output.data() + (field - outputStart), &length, 8);
        } else {
            DrainOutput();
            if (Seek(file, field)) {
                std::fwrite(&length, 1, 8, file);
                NoteStreamState();
                Seek(file, end);
            }
        }
        Lend();
    }

    void WriteRecord(std::size_t entry) {
        // The list may grow while we write; it still holds the object.
        BSmartObj* object = pending[entry].m_object.get();
        BString name = pending[entry].m_name;
        writing = object;
        writingNumber = pendingNumbers[entry];
        object->WritePrefix(owner, name);
        dataStart = OutputPosition();
        object->WriteData(owner);
        PatchSize();
        pending[entry].m_written = true;
    }

    // The object of a key, loaded if it is not yet; the list of loaded objects owns it. No key
    // is empty: TakeOut, Queue and the scan refuse empty keys.
    BSmartObj* Load(KeyEntry* entry) {
        if (entry && entry->object)
            return entry->object;
        if (!entry || entry->record == kNoRecord || !Good())
            return nullptr;
        Record const& record = records[entry->record];
        if (!SeekRead(record.data))
            return nullptr;
        NArchive::ReadFunction read = ReadFunctionOf(record.className);
        if (!read)
            return nullptr; // an unknown class is no error: references to it come out null
        NoteBook::Stretch stretch;
        SP<BSmartObj> object = RunReadFunction(read, record.version, stretch);
        BSmartObj* made = object.get();
        if (made)
            Enter(std::move(object), stretch, *entry,
                  record.keys[record.keys[0].entry == entry ? 1 : 0].entry);
        return made;
    }

    // Runs a read function and keeps the reference numbers that it noted only if it built an
    // object. A string that cannot be read inside the record (ARCHIVE_EXCEPTION) makes the
    // record unreadable, so its object comes out null: that exception never leaves the
    // library. Anything else a read function throws passes on to the caller.
    SP<BSmartObj> RunReadFunction(NArchive::ReadFunction read, int version,
                                  NoteBook::Stretch& stretch) {
        NoteBook::Mark begun = notes.Begin();
        SP<BSmartObj> object;
        try {
            object = read(owner, version);
        } catch (ARCHIVE_EXCEPTION) {
            object = nullptr;
        } catch (...) {
            notes.Drop(notes.End(begun));
            throw;
        }
        stretch = notes.End(begun);
        if (!object)
            notes.Drop(stretch);
        return object;
    }

    // Loaded objects are entered under both keys of their record. An object that a read
    // function hands out a second time is entered again and has its associations updated
    // again, as a dictionary entry set back to "not yet" would.
    void Enter(SP<BSmartObj> object, NoteBook::Stretch const& stretch, KeyEntry& key,
               KeyEntry* otherKey) {
        key.object = object.get();
        if (otherKey)
            otherKey->object = object.get();
        loaded.push_back({std::move(object), stretch});
    }

    // Keys whose load failed in the running TakeOut are not queued again: loading them a
    // second time would fail the same way, and read functions that give up after reading
    // their references could otherwise queue each other for ever.
    void Queue(KeyEntry& entry) {
        if (entry.object || entry.queued || entry.failed)
            return;
        entry.queued = true;
        later.push_back(&entry);
    }

    void Fail(KeyEntry& entry) {
        entry.failed = true;
        failed.push_back(&entry);
    }

    void ForgetFailures() {
        for (KeyEntry* entry : failed)
            entry->failed = false;
        failed.clear();
    }

    void LoadLater() {
        while (!later.empty()) {
            KeyEntry& entry = *later.front();
            later.pop_front();
            entry.queued = false;
            if (!Load(&entry))
                Fail(entry);
        }
    }

    // UpdateAssociations once per object, in the order of loading; no class may count on
    // another object's references being resolved before its own. An object counts as done
    // once its call began, so a TakeOut from inside one cannot run it a second time.
    void ResolveLoaded() {
        while (firstUnresolved < loaded.size()) {
            if (firstUnresolved + kAhead < loaded.size())
                __builtin_prefetch(loaded[firstUnresolved + kAhead].object.get());
            Loaded& entry = loaded[firstUnresolved++];
            // The list may grow while the object updates; it still holds the object.
            BSmartObj* object = entry.object.get();
            NoteBook::Stretch stretch = entry.notes;
            NoteBook::Stretch* outer = notes.SetCurrent(&stretch);
            try {
                object->UpdateAssociations(owner);
            } catch (...) {
                notes.SetCurrent(outer);
                throw;
            }
            notes.SetCurrent(outer);
        }
        // Every object has had its call: notes still here belong to fields that no one
        // resolves.
        notes.ClearIfIdle();
    }
};

BQuorvelArchive::BQuorvelArchive(char16_t const* path, MODE mode, BString name, int version)
    : m_state(std::make_unique<State>(*this, WString(path), mode)) {
    if (mode == WRITE)
        m_state->OpenForWriting(name, version);
    else
        m_state->OpenForReading(name, version);
    // The windows open again at the next call that goes through the buffers, when this
    // object is of its final class and a derived class's overrides are in place.
    m_state->TakeBack();
}

BQuorvelArchive::~BQuorvelArchive() {
    if (!m_state->file)
        return;
    try {
        Flush();
    } catch (...) {
        // A destructor cannot report: what a class's WriteData threw here is lost, and the
        // record it was writing keeps its placeholder, which makes readers refuse the file.
    }
    m_state->Close();
}

int BQuorvelArchive::Version() const {
    return m_state->formatVersion;
}

void BQuorvelArchive::ThrowError() const {
    throw BError(BError::kGeneralFailure, u"$IDS_ErrorHint16");
}

bool BQuorvelArchive::IsGood() const {
    return m_state->Good();
}

BArchive::MODE BQuorvelArchive::Mode() const {
    return m_state->mode;
}

void BQuorvelArchive::Insert(BSmartObj* object, char const* name) {
    State& s = *m_state;
    std::string key = name ? name : "";
    if (!object)
        return;
    Met& met = s.met[object];
    if (met.pending || (!key.empty() && s.pendingNames.contains(key)))
        return;
    met.pending = true;
    if (!key.empty())
        s.pendingNames.insert(key);
    s.pending.push_back({SP<BSmartObj>(object), BString(std::string_view(key)), false});
    s.pendingNumbers.push_back(met.indexed ? met.index : 0);
}

bool BQuorvelArchive::Flush() {
    State& s = *m_state;
    if (s.mode != WRITE || !s.Good())
        return false;
    // The objects being written add to the end of the list, and the walk reaches them too:
    // a walk of the graph by a queue, which never recurses.
    for (std::size_t entry = s.firstUnwritten; entry < s.pending.size(); ++entry)
        if (!s.pending[entry].m_written)
            s.WriteRecord(entry);
    s.firstUnwritten = s.pending.size();
    s.DrainOutput();
    std::fflush(s.file);
    s.NoteStreamState();
    return true;
}

SP<BSmartObj> BQuorvelArchive::TakeOut(char const* name) {
    State& s = *m_state;
    if (s.mode != READ || !name || !*name)
        return nullptr;
    struct ForgetFailures {
        State& s;
        ~ForgetFailures() { s.ForgetFailures(); }
    } guard{s};
    SP<BSmartObj> object = s.Load(s.keys.Find(name));
    if (!object)
        s.Fail(s.keys.Get(name));
    s.LoadLater();
    s.ResolveLoaded();
    return VerifyObjects() ? object : nullptr;
}

SP<BSmartObj> BQuorvelArchive::QueryObject(void* reference) const {
    if (!reference)
        return nullptr;
    // The number is the key, in the form BSmartObj::Id gives it.
    KeyEntry* entry = m_state->keys.Find(reinterpret_cast<std::uintptr_t>(reference));
    return entry ? entry->object : nullptr;
}

unsigned long long BQuorvelArchive::ReadMemoryBlock(void* buffer, unsigned long long size) {
    if (size == 0 || m_state->mode != READ || !m_state->Good())
        return 0;
    return m_state->Read(buffer, size);
}

unsigned long long BQuorvelArchive::WriteMemoryBlock(void const* buffer, unsigned long long size) {
    if (size == 0 || m_state->mode != WRITE || !m_state->Good())
        return 0;
    return m_state->Write(buffer, size);
}

bool BQuorvelArchive::VerifyObjects() {
    std::vector<State::Loaded> const& loaded = m_state->loaded;
    for (std::size_t i = 0; i < loaded.size(); ++i) {
        // A large load does not fit the cache: the objects ahead are asked for early.
        if (i + kAhead < loaded.size())
            __builtin_prefetch(loaded[i + kAhead].object.get());
        if (!loaded[i].object->VerifyObj())
            return false;
    }
    return true;
}

unsigned int BQuorvelArchive::MapPointerToIndex(void* object) {
    State& s = *m_state;
    if (object == s.writing && s.writingNumber != 0)
        return s.writingNumber;
    Met& met = s.met[object];
    if (!met.indexed) {
        // Null holds 0, so the number of objects numbered so far is the new index.
        if (s.indexed > 0xFFFFFFFFu)
            ThrowError();
        met.index = static_cast<unsigned int>(s.indexed++);
        met.indexed = true;
    }
    return met.index;
}

bool BQuorvelArchive::Force64bitFormat() const {
    return false;
}

void BQuorvelArchive::TakeOutLater(BString key) {
    std::string text(key.View());
    if (!text.empty())
        m_state->Queue(m_state->keys.Get(text));
}

WString BQuorvelArchive::Path() const {
    return m_state->path;
}

void BQuorvelArchive::NoteReference(void* field, unsigned long long number, bool load) {
    State& s = *m_state;
    // Null references are noted too (0 stands for null), so that a class that resolves in the
    // order it read finds every field at the next note.
    s.notes.Add(field, number);
    if (load && number != 0)
        s.Queue(s.keys.Get(number));
}

bool BQuorvelArchive::TakeReference(void* field, unsigned long long& number) {
    return m_state->notes.Take(field, number);
}
