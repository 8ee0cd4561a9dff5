#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <deque>
#include <qv/core/BError.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/Tupel.h>
#include <string>
#include <sys/types.h>
#include <unordered_map>
#include <unordered_set>
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

std::string Key(BString const& text) {
    return std::string(text.View());
}

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

// The file is reached through the C runtime with 64-bit positions. The name goes in its UTF-8
// form; the mode is always binary.
std::FILE* OpenFile(WString const& path, bool write) {
    if (path.IsEmpty())
        return nullptr;
    return std::fopen(path.ToUtf8().c_str(), write ? "wb" : "rb");
}

bool Seek(std::FILE* file, long long position, int origin = SEEK_SET) {
    return fseeko(file, static_cast<off_t>(position), origin) == 0;
}

long long Tell(std::FILE* file) {
    return static_cast<long long>(ftello(file));
}

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

    // Keys to load at the end of the running TakeOut, with a set beside the queue so that
    // noting a key stays constant in time. Keys that failed to load in the running TakeOut
    // are not queued again: loading them a second time would fail the same way, and a read
    // function that gives up after reading its references could otherwise queue its
    // neighbours and itself for ever.
    std::deque<std::string> later;
    std::unordered_set<std::string> laterKeys;
    std::unordered_set<std::string> failedKeys;

    // Objects to write in file order. The sets answer Insert's "already there?" in constant
    // time; the walk of the list stays the order of the file.
    std::vector<NArchive::Tupel> pending;
    std::size_t firstUnwritten = 0;
    std::unordered_set<BSmartObj const*> pendingObjects;
    std::unordered_set<std::string> pendingNames;

    // Key (id or name) to loaded object; the loaded objects in order of loading, of which
    // those before firstUnresolved have had UpdateAssociations.
    std::unordered_map<std::string, SP<BSmartObj>> objects;
    std::vector<SP<BSmartObj>> loaded;
    std::unordered_set<BSmartObj const*> loadedSet;
    std::size_t firstUnresolved = 0;

    std::unordered_map<std::string, long long> offsets;
    std::unordered_map<void const*, unsigned int> indexes{{nullptr, 0u}};

    // Reference numbers of fields under load, by the field's address, and the fields noted by
    // the read function that runs now (null outside one).
    std::unordered_map<void*, unsigned long long> numbers;
    std::vector<void*>* readingFields = nullptr;

    // Written bytes not yet handed to the stream, and the file position of the first.
    std::vector<unsigned char> output;
    long long outputStart = 0;

    // Bytes read ahead: the stream's position is always inputStart + inputEnd. Loading seeks
    // once per object, mostly to where the previous one ended or a little further, which is
    // served here without a call to the stream.
    std::vector<unsigned char> input;
    std::size_t inputPosition = 0;
    std::size_t inputEnd = 0;
    long long inputStart = 0;

    bool Good() const { return file && !std::ferror(file); }

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
        if (!(first == name && second == kArchiveClass && application >= version &&
              format >= kOldestFormat && format <= kWrittenFormat))
            return false;
        formatVersion = format;
        firstRecord = ReadPosition();
        return true;
    }

    // One pass over the prefixes, seeking over the data, to learn where each key lies.
    bool ScanRecords() {
        if (!Seek(file, 0, SEEK_END))
            return false;
        long long end = Tell(file);
        inputStart = end;
        inputPosition = inputEnd = 0;
        long long position = firstRecord;
        if (end < 0 || !SeekRead(position))
            return false;
        while (position < end) {
            BString id, name, className;
            int version = 0;
            unsigned long long size = 0;
            if (!BSmartObj::ReadPrefix(owner, id, name, className, version, size))
                return false;
            long long data = ReadPosition();
            // A negative size is the placeholder of a record that never got finished. It is
            // refused as such, also where seeking back by it would succeed: that could walk
            // the scan in circles. A size beyond the end would fail at the next prefix.
            if (data < 0 || static_cast<long long>(size) < 0 ||
                size > static_cast<unsigned long long>(end - data))
                return false;
            if (!id.IsEmpty())
                offsets[Key(id)] = position;
            if (!name.IsEmpty())
                offsets[Key(name)] = position;
            position = data + static_cast<long long>(size);
            if (!SeekRead(position))
                return false;
        }
        return true;
    }

    void Close() {
        DrainOutput();
        std::fclose(file);
        file = nullptr;
    }

    long long ReadPosition() const { return inputStart + static_cast<long long>(inputPosition); }

    bool SeekRead(long long position) {
        if (position >= inputStart && position <= inputStart + static_cast<long long>(inputEnd)) {
            inputPosition = static_cast<std::size_t>(position - inputStart);
            return true;
        }
        if (!Seek(file, position))
            return false;
        inputStart = position;
        inputPosition = inputEnd = 0;
        return true;
    }

    // As fread would: the bytes that came, fewer at the end of the file or on an error.
    unsigned long long Read(void* buffer, unsigned long long size) {
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
        return done;
    }

    bool Refill() {
        input.resize(kInputChunk);
        inputStart += static_cast<long long>(inputEnd);
        inputPosition = 0;
        inputEnd = std::fread(input.data(), 1, kInputChunk, file);
        return inputEnd > 0;
    }

    long long OutputPosition() const { return outputStart + static_cast<long long>(output.size()); }

    void DrainOutput() {
        if (output.empty() || !file)
            return;
        outputStart += static_cast<long long>(std::fwrite(output.data(), 1, output.size(), file));
        output.clear();
    }

    unsigned long long Write(void const* buffer, unsigned long long size) {
        if (size >= kOutputChunk) {
            DrainOutput();
            unsigned long long written = std::fwrite(buffer, 1, size, file);
            outputStart += static_cast<long long>(written);
            return written;
        }
        auto const* bytes = static_cast<unsigned char const*>(buffer);
        output.insert(output.end(), bytes, bytes + size);
        if (output.size() >= kOutputChunk)
            DrainOutput();
        return size;
    }

    // Puts the length of the record's data into its size field, in memory where the field
    // still is, else on the file.
    void PatchSize() {
        long long end = OutputPosition();
        std::uint64_t length = static_cast<std::uint64_t>(end - dataStart);
        long long field = dataStart - 8;
        dataStart = -1;
        if (field >= outputStart) {
            std::memcpy(output.data() + (field - outputStart), &length, 8);
            return;
        }
        DrainOutput();
        if (Seek(file, field)) {
            std::fwrite(&length, 1, 8, file);
            Seek(file, end);
        }
    }

    void WriteRecord(std::size_t entry) {
        SP<BSmartObj> object = pending[entry].m_object; // the list may grow while we write
        BString name = pending[entry].m_name;
        object->WritePrefix(owner, name);
        dataStart = OutputPosition();
        object->WriteData(owner);
        PatchSize();
        pending[entry].m_written = true;
    }

    SP<BSmartObj> Load(std::string const& key) {
        if (auto found = objects.find(key); found != objects.end())
            return found->second;
        auto offset = offsets.find(key);
        if (key.empty() || !Good() || offset == offsets.end() || !SeekRead(offset->second))
            return nullptr;
        BString id, name, className;
        int version = 0;
        unsigned long long size = 0;
        if (!BSmartObj::ReadPrefix(owner, id, name, className, version, size) ||
            (id.View() != key && name.View() != key))
            return nullptr;
        AddClassPrefix(className);
        NArchive::ReadFunction read = BArchive::SmartObjReadFunction(className);
        if (!read)
            return nullptr; // an unknown class is no error: references to it come out null
        SP<BSmartObj> object = RunReadFunction(read, version);
        if (object)
            Enter(object, key, id.View() == key ? name : id);
        return object;
    }

    // Runs a read function and keeps the reference numbers that it noted only if it built an
    // object: the fields of an object that was given up are gone, and their addresses may
    // soon belong to someone else.
    SP<BSmartObj> RunReadFunction(NArchive::ReadFunction read, int version) {
        std::vector<void*> fields;
        std::vector<void*>* outer = std::exchange(readingFields, &fields);
        SP<BSmartObj> object;
        try {
            object = read(owner, version);
        } catch (...) {
            readingFields = outer;
            Forget(fields);
            throw;
        }
        readingFields = outer;
        if (!object)
            Forget(fields);
        return object;
    }

    void Forget(std::vector<void*> const& fields) {
        for (void* field : fields)
            numbers.erase(field);
    }

    void Enter(SP<BSmartObj> const& object, std::string const& key, BString const& otherKey) {
        objects[key] = object;
        if (!otherKey.IsEmpty())
            objects[Key(otherKey)] = object;
        if (loadedSet.insert(object.get()).second)
            loaded.push_back(object);
    }

    void QueueKey(std::string key) {
        if (key.empty() || objects.contains(key) || laterKeys.contains(key) ||
            failedKeys.contains(key))
            return;
        laterKeys.insert(key);
        later.push_back(std::move(key));
    }

    void LoadLater() {
        while (!later.empty()) {
            std::string key = std::move(later.front());
            later.pop_front();
            laterKeys.erase(key);
            if (!Load(key))
                failedKeys.insert(std::move(key));
        }
    }

    // UpdateAssociations once per object, in the order of loading; no class may count on
    // another object's references being resolved before its own. An object counts as done
    // once its call began, so a TakeOut from inside one cannot run it a second time.
    void ResolveLoaded() {
        while (firstUnresolved < loaded.size()) {
            SP<BSmartObj> object = loaded[firstUnresolved++];
            object->UpdateAssociations(owner);
        }
        // Every object has had its call: numbers still here belong to fields that no one
        // resolves, and are dropped.
        numbers.clear();
    }
};

BQuorvelArchive::BQuorvelArchive(char16_t const* path, MODE mode, BString name, int version)
    : m_state(std::make_unique<State>(*this, WString(path), mode)) {
    if (mode == WRITE)
        m_state->OpenForWriting(name, version);
    else
        m_state->OpenForReading(name, version);
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
    if (!object || s.pendingObjects.contains(object) ||
        (!key.empty() && s.pendingNames.contains(key)))
        return;
    s.pendingObjects.insert(object);
    if (!key.empty())
        s.pendingNames.insert(key);
    s.pending.push_back({SP<BSmartObj>(object), BString(std::string_view(key)), false});
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
    return true;
}

SP<BSmartObj> BQuorvelArchive::TakeOut(char const* name) {
    State& s = *m_state;
    if (s.mode != READ || !name || !*name)
        return nullptr;
    struct ForgetFailures {
        State& s;
        ~ForgetFailures() { s.failedKeys.clear(); }
    } guard{s};
    SP<BSmartObj> object = s.Load(name);
    if (!object)
        s.failedKeys.insert(name);
    s.LoadLater();
    s.ResolveLoaded();
    return VerifyObjects() ? object : nullptr;
}

SP<BSmartObj> BQuorvelArchive::QueryObject(void* reference) const {
    if (!reference)
        return nullptr;
    auto found = m_state->objects.find(NumberKey(reinterpret_cast<std::uintptr_t>(reference)));
    return found == m_state->objects.end() ? nullptr : found->second;
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
    for (SP<BSmartObj> const& object : m_state->loaded)
        if (!object->VerifyObj())
            return false;
    return true;
}

unsigned int BQuorvelArchive::MapPointerToIndex(void* object) {
    auto& indexes = m_state->indexes;
    auto [entry, added] = indexes.try_emplace(object, 0u);
    if (added) {
        // Null holds 0, so the number of entries before this one is the new index.
        std::size_t index = indexes.size() - 1;
        if (index > 0xFFFFFFFFu) {
            indexes.erase(entry);
            ThrowError();
        }
        entry->second = static_cast<unsigned int>(index);
    }
    return entry->second;
}

bool BQuorvelArchive::Force64bitFormat() const {
    return false;
}

void BQuorvelArchive::TakeOutLater(BString key) {
    m_state->QueueKey(Key(key));
}

WString BQuorvelArchive::Path() const {
    return m_state->path;
}

void BQuorvelArchive::NoteReference(void* field, unsigned long long number, bool load) {
    State& s = *m_state;
    if (number == 0) {
        s.numbers.erase(field); // 0 stands for null: nothing to resolve
        return;
    }
    s.numbers[field] = number;
    if (s.readingFields)
        s.readingFields->push_back(field);
    if (load)
        s.QueueKey(NumberKey(number));
}

bool BQuorvelArchive::TakeReference(void* field, unsigned long long& number) {
    auto found = m_state->numbers.find(field);
    if (found == m_state->numbers.end())
        return false;
    number = found->second;
    m_state->numbers.erase(found);
    return true;
}
