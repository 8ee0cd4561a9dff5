// The walk mirrors the archive's opening scan: header strings in the archive's string form (tag
// 0x53, 4-byte length, bytes), then records of id, name, class name, version and a size field
// whose width depends on the format version, each followed by its data. Where the scan of a
// real archive would refuse the file, the walk notes why and where, and stops.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <qv/core/files/BFile.h>
#include <qv/persistence/BArchiveInspector.h>

namespace {

constexpr unsigned char kStringTag = 0x53;
constexpr char kClassPrefix[] = "class ";

class Reader {
public:
    explicit Reader(std::FILE* file, long long size) : m_file(file), m_size(size) {}

    long long Position() const { return m_position; }
    long long Left() const { return m_size - m_position; }

    bool Bytes(void* data, std::size_t n) {
        if (static_cast<long long>(n) > Left() || std::fread(data, 1, n, m_file) != n)
            return false;
        m_position += static_cast<long long>(n);
        return true;
    }
    template <class T>
    bool Number(T& value) {
        unsigned char bytes[sizeof(T)];
        if (!Bytes(bytes, sizeof bytes))
            return false;
        std::make_unsigned_t<T> raw = 0;
        for (std::size_t i = sizeof(T); i-- > 0;)
            raw = static_cast<std::make_unsigned_t<T>>((raw << 8) | bytes[i]);
        value = static_cast<T>(raw);
        return true;
    }
    // A string of the archive; the length is checked against what is left of the file before
    // anything is allocated.
    char const* String(BString& text) {
        unsigned char tag = 0;
        std::uint32_t length = 0;
        if (!Number(tag))
            return "the file ends inside a string";
        if (tag != kStringTag)
            return "a string does not start with its tag byte";
        if (!Number(length))
            return "the file ends inside a string's length";
        if (length > Left())
            return "a string's length runs past the end of the file";
        std::vector<char> bytes(length);
        if (!Bytes(bytes.data(), length))
            return "the file cannot be read";
        text = BString(std::string_view(bytes.data(), bytes.size()));
        return nullptr;
    }
    bool Skip(long long n) {
        if (n < 0 || n > Left() || std::fseek(m_file, static_cast<long>(n), SEEK_CUR) != 0)
            return false;
        m_position += n;
        return true;
    }

private:
    std::FILE* m_file;
    long long m_size;
    long long m_position = 0;
};

bool HasClassPrefix(BString const& text) {
    return std::strncmp(text.CStr(), kClassPrefix, sizeof kClassPrefix - 1) == 0;
}

} // namespace

// A stream archive starts with the number 16, the format identifier, "BStreamArchive" and
// version 9 as a 16-bit string and a number, then its name. True when the file starts so;
// the header's damage is noted then.
bool BArchiveInspector::InspectStreamHeader(std::FILE* file) {
    static constexpr unsigned char kStart[24] = {0x10, 0,    0,    0,    0,    0,    0,    0,
                                                 0x7A, 0x9F, 0xB8, 0x18, 0xD3, 0x86, 0xF8, 0x44,
                                                 0xA3, 0x85, 0x4F, 0xE4, 0x83, 0x31, 0xC3, 0x62};
    unsigned char start[sizeof kStart];
    Reader in(file, m_fileSize);
    if (!in.Bytes(start, sizeof start) || std::memcmp(start, kStart, sizeof start) != 0)
        return false;
    auto wide = [&in](WString& text) {
        std::uint32_t count = 0;
        if (!in.Number(count) || count > in.Left() / 2)
            return false;
        std::u16string units(count, u'\0');
        for (char16_t& unit : units)
            if (!in.Number(unit))
                return false;
        text = WString(std::u16string_view(units));
        return true;
    };
    WString format;
    if (!wide(format) || format != WString(u"BStreamArchive") || !in.Number(m_formatVersion) ||
        m_formatVersion != 9 || !wide(m_streamName)) {
        m_formatVersion = 0;
        m_damage = WString(u"the stream archive header is damaged");
        m_damageOffset = 0;
        return true;
    }
    m_isArchive = m_isStream = true;
    m_name = m_streamName.AsString();
    return true;
}

BArchiveInspector::BArchiveInspector(char16_t const* path, Progress const& progress) {
    Inspect(path, progress);
    if (progress)
        progress(m_fileSize, m_fileSize); // the walk is over, wherever it stopped
}

void BArchiveInspector::Inspect(char16_t const* path, Progress const& progress) {
    constexpr long long kProgressStep = 1 << 20;
    auto fail = [this](long long offset, char const* reason) {
        m_damage = WString::FromUtf8(reason);
        m_damageOffset = offset;
    };
    BFile file(path, u"rb");
    if (!static_cast<std::FILE*>(file)) {
        fail(0, "the file cannot be opened");
        return;
    }
    m_fileSize = BFile::Size(path);
    if (InspectStreamHeader(file))
        return;
    std::rewind(file);
    Reader in(file, m_fileSize);
    BString archiveClass;
    if (in.String(m_name) || in.Number(m_applicationVersion) == false || in.String(archiveClass) ||
        !in.Number(m_formatVersion)) {
        m_formatVersion = 0;
        fail(0, "the file does not start with an object archive header");
        return;
    }
    if (!HasClassPrefix(m_name)) {
        m_name = BString(kClassPrefix) + m_name;
        archiveClass = BString(kClassPrefix) + archiveClass;
    }
    if (archiveClass != BString("class BArchive") || m_formatVersion < 2 || m_formatVersion > 8) {
        fail(0, "the header names no object archive format this library reads");
        m_formatVersion = 0;
        return;
    }
    m_isArchive = true;
    long long reported = 0;
    while (in.Left() > 0) {
        if (progress && in.Position() - reported >= kProgressStep)
            progress(reported = in.Position(), m_fileSize);
        Record record;
        record.offset = in.Position();
        if (char const* why = in.String(record.id); why)
            return fail(record.offset, why);
        if (char const* why = in.String(record.name); why)
            return fail(record.offset, why);
        if (char const* why = in.String(record.className); why)
            return fail(record.offset, why);
        if (!HasClassPrefix(record.className))
            record.className = BString(kClassPrefix) + record.className;
        bool wide = m_formatVersion >= 8;
        std::int32_t narrowSize = 0;
        if (!in.Number(record.version) || !(wide ? in.Number(record.size) : in.Number(narrowSize)))
            return fail(record.offset, "the file ends inside a record's prefix");
        if (!wide)
            record.size = narrowSize;
        record.dataOffset = in.Position();
        if (record.size < 0)
            return fail(record.offset, "the record was never finished (its size was not written)");
        if (!in.Skip(record.size))
            return fail(record.offset, "the record's data runs past the end of the file");
        m_records.push_back(std::move(record));
    }
}
