// The file is read ahead in pieces of 64 KiB. The piece is lent to BArchive as its read
// window while the archive is good and of this very class, so plain values are copied from
// there without virtual calls; a derived class that overrides ReadMemoryBlock sees every
// byte. Objects are read recursively, one level per object inside another, up to a fixed
// depth.
#include <cstring>
#include <qv/core/BError.h>
#include <qv/core/files/BFile.h>
#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/private/StreamArchiveFormat.h>
#include <typeinfo>
#include <vector>

QV_REGISTER_CLASSNAME(BIStreamArchive);

using namespace qv::detail;

struct BIStreamArchive::State {
    State(BIStreamArchive& archive, WString const& where) : owner(archive), path(where) {}

    BIStreamArchive& owner;
    WString path;
    BFile file;
    std::vector<unsigned char> buffer;
    std::size_t position = 0; // the next byte of the buffer
    std::size_t end = 0;      // behind the last byte read ahead
    int depth = 0;            // objects being read, one inside the other
    bool ended = false;       // the last TakeOut found no object flag: the end of the file

    bool Good() const { return file && !std::ferror(file); }

    void TakeBack() {
        if (owner.m_readNext) {
            position = static_cast<std::size_t>(owner.m_readNext - buffer.data());
            owner.m_readNext = owner.m_readEnd = nullptr;
        }
    }
    void Lend() {
        if (Good() && typeid(owner) == typeid(BIStreamArchive)) {
            owner.m_readNext = buffer.data() + position;
            owner.m_readEnd = buffer.data() + end;
        }
    }
    // As fread would: the bytes that came, fewer at the end of the file or on an error.
    unsigned long long Read(void* bytes, unsigned long long size) {
        TakeBack();
        auto* out = static_cast<unsigned char*>(bytes);
        unsigned long long done = 0;
        while (done < size) {
            if (position == end) {
                position = 0;
                end = std::fread(buffer.data(), 1, buffer.size(), file);
                if (end == 0)
                    break;
            }
            std::size_t take =
                static_cast<std::size_t>(std::min<unsigned long long>(size - done, end - position));
            std::memcpy(out + done, buffer.data() + position, take);
            position += take;
            done += take;
        }
        Lend();
        return done;
    }

    bool CheckHeader(WString const& name) {
        unsigned long long number = 0;
        if (!owner.ReadNumber(number) || number != kStreamHeaderNumber)
            owner.ThrowError(); // a foreign file, a short one included
        _GUID id{};
        owner >> id;
        if (std::memcmp(&id, &kStreamArchiveId, sizeof id) != 0)
            return false;
        WString format, stored;
        std::int32_t version = 0;
        owner >> format >> version >> stored;
        return format == WString(kStreamArchiveName) && version == kStreamFormatVersion &&
               stored == name;
    }
};

BIStreamArchive::BIStreamArchive(WString path, WString name)
    : m_state(std::make_unique<State>(*this, path)) {
    State& s = *m_state;
    if (path.IsEmpty() || !s.file.Open(path.CStr(), u"rb"))
        return;
    s.buffer.resize(kStreamChunk);
    if (!s.CheckHeader(name)) {
        s.TakeBack();
        s.file.Close();
    }
    // The window opens at the next read, when the object is of its final class.
    s.TakeBack();
}

BIStreamArchive::~BIStreamArchive() = default;

int BIStreamArchive::Version() const {
    return kStreamFormatVersion;
}

void BIStreamArchive::ThrowError() const {
    throw BError(BError::kArchiveFileError, u"BIStreamArchive");
}

bool BIStreamArchive::IsGood() const {
    return m_state->Good();
}

BArchive::MODE BIStreamArchive::Mode() const {
    return READ;
}

void BIStreamArchive::Insert(BSmartObj*, char const*) {
    throw BError(BError::kArchiveFileError, u"BIStreamArchive - invalid method");
}

SP<BSmartObj> BIStreamArchive::TakeOut(char const*) {
    return Next(m_state->ended);
}

bool BIStreamArchive::AtEnd() const {
    return m_state->ended;
}

SP<BSmartObj> BIStreamArchive::Next(bool& ended) {
    State& s = *m_state;
    unsigned long long flag = 0;
    ended = !ReadNumber(flag);
    if (ended || flag == 0)
        return nullptr;
    BString id, name, className;
    int version = 0;
    unsigned long long size = 0;
    if (!BSmartObj::ReadPrefix(*this, id, name, className, version, size))
        return nullptr;
    NArchive::ReadFunction read = SmartObjReadFunction(className);
    // An object of unknown length cannot be passed over, and the stream is lost behind it.
    if (!read || s.depth >= kStreamMaxDepth)
        ThrowError();
    StreamLevel level(s.depth);
    SP<BSmartObj> object;
    try {
        object = read(*this, version);
    } catch (ARCHIVE_EXCEPTION) {
        // A string inside the object did not read: the object is lost, and the exception
        // stays inside the library.
        return nullptr;
    }
    if (object)
        object->VerifyObj(); // asked, as the writer's reader expects, but not heeded
    return object;
}

SP<BSmartObj> BIStreamArchive::QueryObject(void*) const {
    return nullptr;
}

unsigned long long BIStreamArchive::ReadMemoryBlock(void* buffer, unsigned long long size) {
    if (size == 0 || !m_state->file)
        return 0;
    return m_state->Read(buffer, size);
}

unsigned long long BIStreamArchive::WriteMemoryBlock(void const*, unsigned long long) {
    return 0;
}

bool BIStreamArchive::VerifyObjects() {
    return true;
}

unsigned int BIStreamArchive::MapPointerToIndex(void*) {
    return 0;
}

bool BIStreamArchive::Force64bitFormat() const {
    return false;
}

WString BIStreamArchive::Path() const {
    return m_state->path;
}
