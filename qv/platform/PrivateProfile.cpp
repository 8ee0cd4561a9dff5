#include <qv/platform/PrivateProfile.h>

// Implementation details of the ini engine.
//
// Parsing. A file is kept as its bytes plus a table of lines (byte offsets of a line's start,
// of the end of its content and of the next line) and the sections and keys found in them.
// Lines end at LF, CR or CR LF, counted in units of the file's encoding (one byte, or two for
// UTF-16). Each line is decoded on its own and classified: "[name]" (up to the last ']'),
// an entry "name=value", a valueless name, a comment (';'), or blank. Entries ahead of the
// first header belong to no section. Names are folded (per-unit upper case over all of
// Unicode) into hash indexes; the first section and the first key of a name win.
//
// Cache. One parsed copy per path, shared and immutable, stamped with the identity of the
// file it was read from (device, inode, size, modification and change times). A read stats the
// path and reuses the copy while the stamp matches; a write replaces the file by rename, which
// gives it a new inode, so the next stat of any process sees the change.
//
// Writes. Under an exclusive flock on a lock file beside the ini file (".name.lock", never
// removed), the current copy is validated by its stamp and by a change counter that every
// writer increments inside the lock file, so that a writer never edits stale content. The edit
// splices new lines into the bytes, the result goes to a temporary file in the same folder,
// which then replaces the file by rename. A kill at any point leaves the old or the new file.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <qv/platform/CodePage.h>
#include <qv/platform/FileReplace.h>
#include <qv/platform/PathText.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideNumbers.h>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <vector>

namespace qv::platform {
namespace {

// Limits that keep a damaged or hostile file bounded in what it costs.
constexpr std::size_t kMaxCachedFiles = 64;

enum class Encoding { Ansi, Utf8, Utf16 };

struct Line {
    std::size_t begin;      // first byte of the content
    std::size_t contentEnd; // byte after the content, before the line end
    std::size_t next;       // first byte of the next line
};

enum class Kind { Entry, Valueless, Comment };

struct Key {
    std::u16string name;  // trimmed
    std::u16string value; // trimmed, quotes kept
    Kind kind;
    std::size_t line;
};

struct Section {
    std::u16string name;
    std::size_t header; // line index
    std::size_t end;    // line index of the next header, or the line count
    std::vector<Key> keys;
    std::unordered_map<std::u16string, std::size_t> index; // folded name -> first key
};

struct IniFile {
    Encoding encoding = Encoding::Ansi;
    std::size_t bodyStart = 0; // bytes of the byte order mark
    std::string bytes;
    std::vector<Line> lines;
    std::vector<Section> sections;
    std::unordered_map<std::u16string, std::size_t> index; // folded name -> first section

    Section const* Find(std::u16string const& folded) const {
        auto const it = index.find(folded);
        return it == index.end() ? nullptr : &sections[it->second];
    }
};

bool IsBlank(char16_t c) {
    return IsSpaceW(c);
}

std::u16string_view Trim(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::u16string Fold(std::u16string_view text) {
    std::u16string folded(text);
    for (char16_t& c : folded)
        c = c < 0x80 ? (c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c) : ToUpperW(c);
    return folded;
}

std::u16string FoldName(char16_t const* name) {
    return Fold(Trim(name ? std::u16string_view(name) : std::u16string_view()));
}

// ---- Encoding ------------------------------------------------------------------------------

std::u16string Decode(Encoding encoding, char const* data, std::size_t n) {
    switch (encoding) {
    case Encoding::Utf16: {
        std::u16string text(n / 2, u'\0');
        for (std::size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char16_t>(static_cast<unsigned char>(data[2 * i]) |
                                            static_cast<unsigned char>(data[2 * i + 1]) << 8);
        return text;
    }
    case Encoding::Utf8:
        return Utf8ToUtf16(std::string_view(data, n));
    case Encoding::Ansi:
        break;
    }
    if (n == 0 || n > static_cast<std::size_t>(INT_MAX))
        return {};
    int const length = MultiByteToWideChar(data, static_cast<int>(n), nullptr, 0);
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    MultiByteToWideChar(data, static_cast<int>(n), text.data(), length);
    return text;
}

std::string Encode(Encoding encoding, std::u16string_view text) {
    switch (encoding) {
    case Encoding::Utf16: {
        std::string bytes(text.size() * 2, '\0');
        for (std::size_t i = 0; i < text.size(); ++i) {
            bytes[2 * i] = static_cast<char>(text[i] & 0xFF);
            bytes[2 * i + 1] = static_cast<char>(text[i] >> 8);
        }
        return bytes;
    }
    case Encoding::Utf8:
        return Utf16ToUtf8(text);
    case Encoding::Ansi:
        break;
    }
    if (text.empty() || text.size() > static_cast<std::size_t>(INT_MAX) / 4)
        return {};
    int const n = static_cast<int>(text.size());
    int const length = WideCharToMultiByte(text.data(), n, nullptr, 0);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(text.data(), n, bytes.data(), length);
    return bytes;
}

// ---- Parsing -------------------------------------------------------------------------------

void SplitLines(IniFile& file) {
    std::size_t const unit = file.encoding == Encoding::Utf16 ? 2 : 1;
    std::string const& b = file.bytes;
    std::size_t const end = file.bodyStart + (b.size() - file.bodyStart) / unit * unit;
    auto at = [&](std::size_t i) {
        return unit == 1 ? static_cast<unsigned char>(b[i])
                         : static_cast<unsigned>(static_cast<unsigned char>(b[i]) |
                                                 static_cast<unsigned char>(b[i + 1]) << 8);
    };
    std::size_t pos = file.bodyStart;
    while (pos < end) {
        std::size_t i = pos;
        while (i < end && at(i) != u'\n' && at(i) != u'\r')
            i += unit;
        std::size_t next = i;
        if (next < end) {
            bool const cr = at(next) == u'\r';
            next += unit;
            if (cr && next < end && at(next) == u'\n')
                next += unit;
        }
        file.lines.push_back({pos, i, next});
        pos = next;
    }
}

void Parse(IniFile& file) {
    std::string const& b = file.bytes;
    if (b.size() >= 2 && b[0] == '\xFF' && b[1] == '\xFE') {
        file.encoding = Encoding::Utf16;
        file.bodyStart = 2;
    } else if (b.size() >= 3 && b.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        file.encoding = Encoding::Utf8;
        file.bodyStart = 3;
    }
    SplitLines(file);
    Section* current = nullptr;
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        Line const& line = file.lines[i];
        std::u16string const decoded =
            Decode(file.encoding, b.data() + line.begin, line.contentEnd - line.begin);
        std::u16string_view const text = Trim(decoded);
        if (!text.empty() && text.front() == u'[') {
            std::size_t const close = text.rfind(u']');
            if (close == std::u16string_view::npos)
                continue; // neither header nor entry
            if (current)
                current->end = i;
            std::u16string name(Trim(text.substr(1, close - 1)));
            std::u16string folded = Fold(name);
            file.index.emplace(std::move(folded), file.sections.size());
            file.sections.push_back({std::move(name), i, file.lines.size(), {}, {}});
            current = &file.sections.back();
            continue;
        }
        if (!current || text.empty())
            continue;
        Key key;
        key.line = i;
        std::size_t const eq = text.find(u'=');
        if (eq == std::u16string_view::npos) {
            key.name = text;
            key.kind = Kind::Valueless;
        } else {
            key.name = Trim(text.substr(0, eq));
            key.value = Trim(text.substr(eq + 1));
            key.kind = Kind::Entry;
        }
        if (text.front() == u';')
            key.kind = Kind::Comment;
        current->index.emplace(Fold(key.name), current->keys.size());
        current->keys.push_back(std::move(key));
    }
}

// ---- Identity and cache --------------------------------------------------------------------

struct Stamp {
    dev_t dev = 0;
    ino_t ino = 0;
    off_t size = -1;
    long long mtime = 0;
    long long ctime = 0;
    bool operator==(Stamp const&) const = default;
};

Stamp StampOf(struct stat const& st) {
    return {st.st_dev, st.st_ino, st.st_size,
            static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec,
            static_cast<long long>(st.st_ctim.tv_sec) * 1000000000LL + st.st_ctim.tv_nsec};
}

// The writers' change counter: the first 8 bytes of the lock file, mapped shared, so that a
// read learns of a write by any process of the library without a system call.
class CounterMap {
public:
    explicit CounterMap(std::string const& path) {
        int const fd = ::open(LockPathOf(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (fd < 0)
            return;
        struct stat st;
        if (::fstat(fd, &st) == 0 && (st.st_size >= 8 || ::ftruncate(fd, 8) == 0)) {
            void* map = ::mmap(nullptr, 8, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
            if (map != MAP_FAILED)
                m_word = static_cast<std::uint64_t*>(map);
        }
        ::close(fd);
    }
    ~CounterMap() {
        if (m_word)
            ::munmap(m_word, 8);
    }
    CounterMap(CounterMap const&) = delete;
    CounterMap& operator=(CounterMap const&) = delete;

    bool Valid() const { return m_word != nullptr; }
    std::uint64_t Load() const {
        return std::atomic_ref<std::uint64_t>(*m_word).load(std::memory_order_acquire);
    }
    void Store(std::uint64_t value) const {
        std::atomic_ref<std::uint64_t>(*m_word).store(value, std::memory_order_release);
    }

private:
    std::uint64_t* m_word = nullptr;
};

std::shared_ptr<IniFile const> const& EmptyFile() {
    static auto const* empty = new std::shared_ptr<IniFile const>(std::make_shared<IniFile>());
    return *empty;
}

// The file that the name stands for: a symbolic link is followed, so that the rename replaces
// the file it points to and the link stays.
std::string Target(std::string const& path) {
    struct stat st;
    if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        if (char* real = ::realpath(path.c_str(), nullptr)) {
            std::string resolved(real);
            std::free(real);
            return resolved;
        }
    }
    return path;
}

// One path as callers name it, with its parsed copy. The copy is good while the counter has
// not moved and the file's stamp was checked less than kRecheck ago; the stamp catches
// programs that write the file without the library.
constexpr long long kRecheckNs = 2000000;

long long CoarseNow() {
    struct timespec ts;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &ts);
    return static_cast<long long>(ts.tv_sec) * 1000000000LL + ts.tv_nsec;
}

struct Watched {
    explicit Watched(std::string path) : native(std::move(path)), counter(native) {}

    std::string const native;
    CounterMap const counter;
    std::mutex mutex;
    // Guarded by mutex.
    std::shared_ptr<IniFile const> file; // null until first read
    Stamp stamp;
    std::uint64_t seen = 0;
    long long checkedAt = 0;
};

std::mutex g_watchedMutex;
std::unordered_map<std::u16string, std::shared_ptr<Watched>>& AllWatched() {
    static auto* all = new std::unordered_map<std::u16string, std::shared_ptr<Watched>>();
    return *all;
}

// The entry of a path; the last one a thread used is kept at hand.
std::shared_ptr<Watched> Watch(char16_t const* path16) {
    thread_local std::u16string lastPath;
    thread_local std::shared_ptr<Watched> last;
    if (last && lastPath == path16)
        return last;
    std::shared_ptr<Watched> w;
    {
        std::lock_guard lock(g_watchedMutex);
        auto& all = AllWatched();
        auto const it = all.find(path16);
        if (it != all.end()) {
            w = it->second;
        } else {
            if (all.size() >= kMaxCachedFiles)
                all.clear();
            w = std::make_shared<Watched>(Target(NativePath(path16)));
            all.emplace(path16, w);
        }
    }
    lastPath = path16;
    last = w;
    return w;
}

// Reads and parses the file; null when it cannot be opened or read.
std::shared_ptr<IniFile const> ReadFile(std::string const& path, Stamp& stamp) {
    int const fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    struct stat st;
    auto file = std::make_shared<IniFile>();
    bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    if (ok) {
        stamp = StampOf(st);
        file->bytes.resize(static_cast<std::size_t>(st.st_size));
        std::size_t got = 0;
        while (got < file->bytes.size()) {
            ssize_t const n = ::read(fd, file->bytes.data() + got, file->bytes.size() - got);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            got += static_cast<std::size_t>(n);
        }
        file->bytes.resize(got);
    }
    ::close(fd);
    if (!ok)
        return nullptr;
    Parse(*file);
    return file;
}

// The current copy of w's file, for a caller that holds w.mutex. exact forces the stamp check
// (writers under the lock); otherwise a copy whose counter has not moved is trusted for
// kRecheckNs. A missing or unreadable file is an empty one; *exists tells which.
std::shared_ptr<IniFile const> Current(Watched& w, bool exact, bool* exists = nullptr) {
    std::uint64_t const counter = w.counter.Valid() ? w.counter.Load() : 0;
    long long const now = CoarseNow();
    if (w.file && !exact && w.counter.Valid() && counter == w.seen &&
        now - w.checkedAt < kRecheckNs)
        return w.file;
    struct stat st;
    Stamp stamp;
    bool const present = ::stat(w.native.c_str(), &st) == 0;
    if (present)
        stamp = StampOf(st);
    if (exists)
        *exists = present;
    if (!w.file || !(stamp == w.stamp) || (exact && counter != w.seen)) {
        std::shared_ptr<IniFile const> file;
        if (present)
            file = ReadFile(w.native, stamp);
        w.file = file ? file : EmptyFile();
        w.stamp = stamp;
    }
    w.seen = counter;
    w.checkedAt = now;
    return w.file;
}

// The parsed file for reading.
std::shared_ptr<IniFile const> Load(char16_t const* path16) {
    if (!path16 || !*path16)
        return EmptyFile();
    std::shared_ptr<Watched> const w = Watch(path16);
    std::lock_guard lock(w->mutex);
    return Current(*w, false);
}

// ---- Reading -------------------------------------------------------------------------------

std::u16string_view Unquoted(std::u16string_view value) {
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

Key const* FindKey(IniFile const& file, char16_t const* section, char16_t const* key) {
    Section const* s = file.Find(FoldName(section));
    if (!s)
        return nullptr;
    auto const it = s->index.find(FoldName(key));
    return it == s->index.end() ? nullptr : &s->keys[it->second];
}

// The value form: cut to size - 1 and terminated.
std::uint32_t CopyValue(std::u16string_view text, char16_t* buffer, std::uint32_t size) {
    if (!buffer || size == 0)
        return 0;
    std::size_t const n = std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.data(), n, buffer);
    buffer[n] = 0;
    return static_cast<std::uint32_t>(n);
}

// The list forms: each item terminated, one more terminator at the end. A list that does not
// fit ends with two terminators and gives size - 2; wholeItems keeps only the items that fit
// completely, otherwise the text is cut anywhere.
std::uint32_t CopyList(std::vector<std::u16string_view> const& items, bool wholeItems,
                       char16_t* buffer, std::uint32_t size) {
    if (!buffer || size == 0)
        return 0;
    std::size_t total = 0;
    for (auto const& item : items)
        total += item.size() + 1;
    if (total + 1 <= size) {
        for (auto const& item : items) {
            buffer = std::copy(item.begin(), item.end(), buffer);
            *buffer++ = 0;
        }
        *buffer = 0;
        return static_cast<std::uint32_t>(total);
    }
    if (size < 2) {
        buffer[0] = 0;
        return 0;
    }
    std::size_t const room = size - 2;
    std::size_t pos = 0;
    for (auto const& item : items) {
        if (pos + item.size() + 1 <= room) {
            std::copy(item.begin(), item.end(), buffer + pos);
            pos += item.size();
            buffer[pos++] = 0;
            continue;
        }
        if (!wholeItems) {
            std::size_t const n = std::min(item.size(), room - pos);
            std::copy_n(item.data(), n, buffer + pos);
            pos += n;
        }
        break;
    }
    std::fill(buffer + pos, buffer + size, u'\0');
    return static_cast<std::uint32_t>(room);
}

std::vector<std::u16string_view> KeyNames(IniFile const& file, char16_t const* section) {
    std::vector<std::u16string_view> names;
    if (Section const* s = file.Find(FoldName(section)))
        for (Key const& key : s->keys)
            if (key.kind == Kind::Entry)
                names.emplace_back(key.name);
    return names;
}

// ---- Writing -------------------------------------------------------------------------------

// An edit of the file's bytes: the new content, or nullopt-like false when nothing changes.
struct Edit {
    std::string bytes;
    bool changed = false;
};

class Writer {
public:
    Writer(IniFile const& file) : m_file(file), m_bytes(file.bytes) {
        // A stray last byte of a UTF-16 file belongs to no unit: it goes with the first edit.
        if (file.encoding == Encoding::Utf16 && (m_bytes.size() - file.bodyStart) % 2)
            m_bytes.pop_back();
    }

    std::string Text(std::u16string_view text) const { return Encode(m_file.encoding, text); }
    std::string Eol() const { return Text(u"\r\n"); }

    // Replaces bytes [from, to) by text; edits must come in falling order of position.
    void Splice(std::size_t from, std::size_t to, std::string const& text) {
        from = std::min(from, m_bytes.size());
        to = std::min(to, m_bytes.size());
        m_bytes.replace(from, to - from, text);
        m_changed = true;
    }

    // Where a new line goes at the end of the file, with the line end that the last line
    // lacks.
    std::string AtEnd(std::string text) const {
        if (!m_file.lines.empty() && m_file.lines.back().next == m_file.lines.back().contentEnd)
            text.insert(0, Eol());
        return text;
    }

    Edit Done() { return {std::move(m_bytes), m_changed}; }

private:
    IniFile const& m_file;
    std::string m_bytes;
    bool m_changed = false;
};

Edit SetValue(IniFile const& file, char16_t const* section, char16_t const* key,
              char16_t const* value) {
    Writer w(file);
    std::u16string_view const v(value);
    Section const* s = file.Find(FoldName(section));
    if (!s) {
        std::u16string text = u"[" + std::u16string(section) + u"]\r\n" + std::u16string(key) +
                              u"=" + std::u16string(v) + u"\r\n";
        w.Splice(file.bytes.size(), file.bytes.size(), w.AtEnd(w.Text(text)));
        return w.Done();
    }
    auto const it = s->index.find(FoldName(key));
    if (it != s->index.end()) {
        Line const& line = file.lines[s->keys[it->second].line];
        std::u16string const old =
            Decode(file.encoding, file.bytes.data() + line.begin, line.contentEnd - line.begin);
        std::size_t const eq = old.find(u'=');
        std::u16string text =
            eq == std::u16string::npos ? std::u16string(Trim(old)) + u"=" : old.substr(0, eq + 1);
        text += v;
        w.Splice(line.begin, line.contentEnd, w.Text(text));
        return w.Done();
    }
    // A new key goes behind the last line of the section that holds one, else behind the
    // header; blank lines and the next section stay behind it.
    std::size_t const after = s->keys.empty() ? s->header : s->keys.back().line;
    Line const& line = file.lines[after];
    std::string text = w.Text(std::u16string(key) + u"=" + std::u16string(v)) + w.Eol();
    if (line.next == line.contentEnd)
        text.insert(0, w.Eol());
    w.Splice(line.next, line.next, text);
    return w.Done();
}

Edit DeleteKey(IniFile const& file, char16_t const* section, char16_t const* key) {
    Writer w(file);
    Section const* s = file.Find(FoldName(section));
    if (s) {
        auto const it = s->index.find(FoldName(key));
        if (it != s->index.end()) {
            Line const& line = file.lines[s->keys[it->second].line];
            w.Splice(line.begin, line.next, std::string());
        }
    }
    return w.Done();
}

// The byte range of a section, its header included, up to the next header.
std::pair<std::size_t, std::size_t> RangeOf(IniFile const& file, Section const& s) {
    std::size_t const from = file.lines[s.header].begin;
    std::size_t const to = s.end < file.lines.size() ? file.lines[s.end].begin : file.bytes.size();
    return {from, to};
}

// Every section of the name goes, with its lines up to the next header.
Edit DeleteSection(IniFile const& file, char16_t const* section) {
    Writer w(file);
    std::u16string const folded = FoldName(section);
    for (auto s = file.sections.rbegin(); s != file.sections.rend(); ++s) {
        if (Fold(s->name) != folded)
            continue;
        auto const [from, to] = RangeOf(file, *s);
        w.Splice(from, to, std::string());
    }
    return w.Done();
}

// The section's lines between its header and the next header give way to content; a missing
// section is added at the end.
Edit WriteSection(IniFile const& file, char16_t const* section, char16_t const* content) {
    Writer w(file);
    std::u16string lines;
    for (char16_t const* p = content; *p; p += std::char_traits<char16_t>::length(p) + 1)
        lines += std::u16string(p) + u"\r\n";
    Section const* s = file.Find(FoldName(section));
    if (!s) {
        std::u16string const text = u"[" + std::u16string(section) + u"]\r\n" + lines;
        w.Splice(file.bytes.size(), file.bytes.size(), w.AtEnd(w.Text(text)));
        return w.Done();
    }
    Line const& header = file.lines[s->header];
    auto const [from, to] = RangeOf(file, *s);
    std::string text = w.Text(lines);
    if (header.next == header.contentEnd)
        text.insert(0, w.Eol());
    w.Splice(header.next, to, text);
    (void)from;
    return w.Done();
}

// The whole text in UTF-16LE with a byte order mark, as the runtime's text mode would write
// it: every line feed preceded by a carriage return.
Edit ToUnicode(IniFile const& file) {
    Edit edit;
    if (file.encoding == Encoding::Utf16)
        return edit;
    std::u16string const text = Decode(file.encoding, file.bytes.data() + file.bodyStart,
                                       file.bytes.size() - file.bodyStart);
    std::u16string out;
    out.reserve(text.size() + text.size() / 16);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r'))
            out += u'\r';
        out += text[i];
    }
    edit.bytes = "\xFF\xFE" + Encode(Encoding::Utf16, out);
    edit.changed = true;
    return edit;
}

// ---- The lock, the counter and the replacement ---------------------------------------------

// Writes bytes over path (on disk, whole, before it returns) and gives the stamp of the new
// file for the cache: the rename changes the change time, so the stamp is taken again.
bool Replace(std::string const& path, std::string const& bytes, mode_t mode, Stamp& stamp) {
    struct stat st;
    if (!ReplaceFile(path, bytes, static_cast<int>(mode)) || ::stat(path.c_str(), &st) != 0)
        return false;
    stamp = StampOf(st);
    return true;
}

// Runs one edit under the lock: the current content (validated by stamp and counter, else read
// again), the edit, the replacement, the cache. True when the edit changed nothing or its
// result is on disk.
template <class EditFn>
bool Modify(char16_t const* path16, bool createIfMissing, EditFn edit) {
    if (!path16 || !*path16)
        return false;
    std::shared_ptr<Watched> const w = Watch(path16);
    std::string const& path = w->native;
    FileLock lock(path);
    if (!lock.Held() || !w->counter.Valid())
        return false;
    std::lock_guard guard(w->mutex);
    bool exists = false;
    std::shared_ptr<IniFile const> const current = Current(*w, true, &exists);
    struct stat st;
    mode_t mode = 0644; // a new file, as the usual umask leaves it
    if (exists) {
        if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode) ||
            ::access(path.c_str(), W_OK) != 0)
            return false;
        mode = st.st_mode & 07777;
    }
    Edit result = edit(*current, exists);
    if (!result.changed || (!exists && !createIfMissing))
        return true;
    auto fresh = std::make_shared<IniFile>();
    fresh->bytes = std::move(result.bytes);
    Parse(*fresh);
    Stamp stamp;
    if (!Replace(path, fresh->bytes, mode, stamp))
        return false;
    std::uint64_t const counter = w->counter.Load() + 1;
    w->counter.Store(counter);
    w->file = std::move(fresh);
    w->stamp = stamp;
    w->seen = counter;
    w->checkedAt = CoarseNow();
    return true;
}

std::u16string_view DefaultText(char16_t const* defaultValue) {
    std::u16string_view text = defaultValue ? defaultValue : u"";
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

std::uint32_t GetPrivateProfileStringW(char16_t const* section, char16_t const* key,
                                       char16_t const* defaultValue, char16_t* buffer,
                                       std::uint32_t size, char16_t const* path) {
    if (!section)
        return GetPrivateProfileSectionNamesW(buffer, size, path);
    auto const file = Load(path);
    if (!key)
        return CopyList(KeyNames(*file, section), false, buffer, size);
    Key const* found = FindKey(*file, section, key);
    if (found && found->kind != Kind::Valueless)
        return CopyValue(Unquoted(found->value), buffer, size);
    return CopyValue(DefaultText(defaultValue), buffer, size);
}

std::uint32_t GetPrivateProfileSectionNamesW(char16_t* buffer, std::uint32_t size,
                                             char16_t const* path) {
    auto const file = Load(path);
    std::vector<std::u16string_view> names;
    for (Section const& s : file->sections)
        if (!s.name.empty())
            names.emplace_back(s.name);
    return CopyList(names, true, buffer, size);
}

std::uint32_t GetPrivateProfileSectionW(char16_t const* section, char16_t* buffer,
                                        std::uint32_t size, char16_t const* path) {
    auto const file = Load(path);
    std::vector<std::u16string> lines;
    if (Section const* s = file->Find(FoldName(section))) {
        for (Key const& key : s->keys) {
            if (key.kind == Kind::Entry)
                lines.push_back(key.name + u"=" + key.value);
            else if (key.kind == Kind::Valueless)
                lines.push_back(key.name);
        }
    }
    std::vector<std::u16string_view> const views(lines.begin(), lines.end());
    return CopyList(views, true, buffer, size);
}

std::uint32_t GetPrivateProfileIntW(char16_t const* section, char16_t const* key, int defaultValue,
                                    char16_t const* path) {
    char16_t text[64];
    if (GetPrivateProfileStringW(section, key, u"", text, 64, path) == 0)
        return static_cast<std::uint32_t>(defaultValue);
    char16_t const* p = text;
    bool negative = false;
    if (*p == u'+' || *p == u'-')
        negative = *p++ == u'-';
    std::uint32_t value = 0;
    if (p[0] == u'0' && p[1] == u'x') {
        for (p += 2; HexDigitValue(*p) >= 0; ++p)
            value = value * 16 + static_cast<std::uint32_t>(HexDigitValue(*p));
    } else {
        for (; *p >= u'0' && *p <= u'9'; ++p)
            value = value * 10 + static_cast<std::uint32_t>(*p - u'0');
    }
    return negative ? 0u - value : value;
}

bool WritePrivateProfileStringW(char16_t const* section, char16_t const* key, char16_t const* value,
                                char16_t const* path) {
    if (!section)
        return false;
    if (!key)
        return Modify(path, false,
                      [&](IniFile const& f, bool) { return DeleteSection(f, section); });
    if (!value)
        return Modify(path, false,
                      [&](IniFile const& f, bool) { return DeleteKey(f, section, key); });
    return Modify(path, true,
                  [&](IniFile const& f, bool) { return SetValue(f, section, key, value); });
}

bool WritePrivateProfileSectionW(char16_t const* section, char16_t const* content,
                                 char16_t const* path) {
    if (!section)
        return false;
    if (!content)
        return Modify(path, false,
                      [&](IniFile const& f, bool) { return DeleteSection(f, section); });
    return Modify(path, true,
                  [&](IniFile const& f, bool) { return WriteSection(f, section, content); });
}

bool WritePrivateProfileStructW(char16_t const* section, char16_t const* key, void const* data,
                                std::uint32_t size, char16_t const* path) {
    if (!section || !key || (!data && size))
        return false;
    if (!data)
        return WritePrivateProfileStringW(section, key, nullptr, path);
    static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
    auto const* bytes = static_cast<unsigned char const*>(data);
    std::u16string text;
    text.reserve(2 * std::size_t{size} + 2);
    unsigned sum = 0;
    for (std::uint32_t i = 0; i < size; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
        sum += bytes[i];
    }
    text += kDigits[(sum >> 4) & 15];
    text += kDigits[sum & 15];
    return WritePrivateProfileStringW(section, key, text.c_str(), path);
}

bool GetPrivateProfileStructW(char16_t const* section, char16_t const* key, void* data,
                              std::uint32_t size, char16_t const* path) {
    if (!section || !key || !data)
        return false;
    auto const file = Load(path);
    Key const* found = FindKey(*file, section, key);
    if (!found || found->kind == Kind::Valueless)
        return false;
    std::u16string_view const text = Unquoted(found->value);
    if (text.size() != 2 * std::size_t{size} + 2)
        return false;
    std::vector<unsigned char> bytes(size + 1);
    unsigned sum = 0;
    for (std::size_t i = 0; i <= size; ++i) {
        int const high = HexDigitValue(text[2 * i]);
        int const low = HexDigitValue(text[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes[i] = static_cast<unsigned char>(high << 4 | low);
        if (i < size)
            sum += bytes[i];
    }
    if ((sum & 0xFF) != bytes[size])
        return false;
    std::memcpy(data, bytes.data(), size);
    return true;
}

bool CreateUnicodePrivateProfile(char16_t const* path, bool replaceExisting) {
    return Modify(path, true, [&](IniFile const&, bool exists) {
        Edit edit;
        if (replaceExisting || !exists) {
            edit.bytes = "\xFF\xFE";
            edit.changed = true;
        }
        return edit;
    });
}

bool ConvertPrivateProfileToUnicode(char16_t const* path) {
    return Modify(path, false, [](IniFile const& f, bool) { return ToUnicode(f); });
}

} // namespace qv::platform
