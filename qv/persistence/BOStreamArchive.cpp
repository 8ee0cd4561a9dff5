// Bytes are gathered in a buffer of 64 KiB and reach the stream when it is full and on
// destruction. The buffer is lent to BArchive as its write window while the archive is good
// and of this very class, so plain values are copied there without virtual calls; a derived
// class that overrides WriteMemoryBlock sees every byte.
#include <cstring>
#include <qv/core/BError.h>
#include <qv/core/files/BFile.h>
#include <qv/persistence/BOStreamArchive.h>
#include <qv/persistence/private/StreamArchiveFormat.h>
#include <typeinfo>
#include <vector>

QV_REGISTER_CLASSNAME(BOStreamArchive);

using namespace qv::detail;

struct BOStreamArchive::State {
    State(BOStreamArchive& archive, WString const& where) : owner(archive), path(where) {}

    BOStreamArchive& owner;
    WString path;
    BFile file;
    std::vector<unsigned char> buffer;
    std::size_t used = 0;
    bool failed = false; // a write to the stream came short
    int depth = 0;       // objects being written, one inside the other

    bool Good() const { return file && !failed && !std::ferror(file); }

    void TakeBack() {
        if (owner.m_writeNext) {
            used = static_cast<std::size_t>(owner.m_writeNext - buffer.data());
            owner.m_writeNext = owner.m_writeEnd = nullptr;
        }
    }
    void Lend() {
        if (Good() && typeid(owner) == typeid(BOStreamArchive)) {
            owner.m_writeNext = buffer.data() + used;
            owner.m_writeEnd = buffer.data() + buffer.size();
        }
    }
    void Drain() {
        TakeBack();
        if (used && file && std::fwrite(buffer.data(), 1, used, file) != used)
            failed = true;
        used = 0;
    }
    unsigned long long Write(void const* bytes, unsigned long long size) {
        TakeBack();
        if (size > buffer.size() - used)
            Drain();
        unsigned long long written = size;
        if (size >= buffer.size()) {
            written = std::fwrite(bytes, 1, size, file);
            failed = failed || written != size;
        } else {
            std::memcpy(buffer.data() + used, bytes, size);
            used += size;
        }
        Lend();
        return written;
    }
};

BOStreamArchive::BOStreamArchive(WString path, WString name)
    : m_state(std::make_unique<State>(*this, path)) {
    State& s = *m_state;
    if (path.IsEmpty() || !s.file.Open(path.CStr(), u"wb"))
        return;
    s.buffer.resize(kStreamChunk);
    *this << kStreamHeaderNumber << kStreamArchiveId << WString(kStreamArchiveName)
          << static_cast<std::int32_t>(kStreamFormatVersion) << name;
    // The window opens at the next write, when the object is of its final class.
    s.TakeBack();
}

BOStreamArchive::~BOStreamArchive() {
    m_state->Drain();
}

int BOStreamArchive::Version() const {
    return kStreamFormatVersion;
}

void BOStreamArchive::ThrowError() const {
    throw BError(BError::kArchiveFileError, u"BOStreamArchive");
}

bool BOStreamArchive::IsGood() const {
    return m_state->Good();
}

BArchive::MODE BOStreamArchive::Mode() const {
    return WRITE;
}

void BOStreamArchive::Insert(BSmartObj* object, char const* name) {
    State& s = *m_state;
    if (!IsGood() || s.depth >= kStreamMaxDepth)
        ThrowError();
    *this << static_cast<unsigned long long>(object ? 1 : 0);
    if (!object)
        return;
    StreamLevel level(s.depth);
    object->WritePrefix(*this, BString(std::string_view(name ? name : "")));
    object->WriteData(*this);
}

SP<BSmartObj> BOStreamArchive::TakeOut(char const*) {
    return nullptr;
}

SP<BSmartObj> BOStreamArchive::QueryObject(void*) const {
    return nullptr;
}

unsigned long long BOStreamArchive::ReadMemoryBlock(void*, unsigned long long) {
    return 0;
}

unsigned long long BOStreamArchive::WriteMemoryBlock(void const* buffer, unsigned long long size) {
    if (size == 0 || !m_state->file)
        return 0;
    return m_state->Write(buffer, size);
}

bool BOStreamArchive::VerifyObjects() {
    return true;
}

unsigned int BOStreamArchive::MapPointerToIndex(void*) {
    return 0;
}

bool BOStreamArchive::Force64bitFormat() const {
    return false;
}

WString BOStreamArchive::Path() const {
    return m_state->path;
}
